// Parses the command line of one command and writes its help.

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <system_error>
#include <utility>

#include <CLI/CLI.hpp>

#include "gxutil.h"

namespace gxutil {
namespace {

constexpr std::size_t kHelpColumn = 22;

std::string HelpLine(std::string name, const std::string& help) {
  if (name.size() > kHelpColumn - 2) name += "\n";
  const std::size_t start = name.back() == '\n' ? name.size() : 0;
  name.resize(start + kHelpColumn, ' ');
  return "  " + name + help + "\n";
}

std::string ReadAll(std::FILE* file, const std::string& name) {
  std::string data;
  char piece[65536];
  std::size_t count = sizeof piece;
  while (count == sizeof piece) {
    count = std::fread(piece, 1, sizeof piece, file);
    data.append(piece, count);
  }
  if (std::ferror(file) != 0) throw std::runtime_error(name + ": " + std::strerror(errno));
  return data;
}

std::string ReadFile(const std::string& path) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"),
                                                             std::fclose);
  if (file == nullptr) throw std::runtime_error(path + ": " + std::strerror(errno));
  return ReadAll(file.get(), path);
}

}  // namespace

CommandLine::CommandLine(const Command& command, std::vector<std::string> arguments)
    : command_(command), arguments_(std::move(arguments)), app_(std::make_unique<CLI::App>()) {
  app_->set_help_flag("-h,--help");
}

CommandLine::~CommandLine() = default;

const std::string& CommandLine::Operand(const char* name, const char* help) {
  std::string& value = texts_.emplace_back();
  app_->add_option(name, value)->required();
  operandNames_.append(" ").append(name);
  helpLines_ += HelpLine(name, help);
  return value;
}

const std::optional<std::string>& CommandLine::OptionalOperand(const char* name, const char* help) {
  std::optional<std::string>& value = options_.emplace_back();
  app_->add_option_function<std::string>(name, [&](const std::string& text) { value = text; });
  operandNames_.append(" [").append(name) += "]";
  helpLines_ += HelpLine(name, help);
  return value;
}

std::string& CommandLine::Input(const char* name, const char* help) {
  const std::string fullHelp = std::string(help) + ", not a file (or standard input)";
  inputOperand_ = &OptionalOperand(name, fullHelp.c_str());
  inputFile_ = &Option("-f, --file", "FILE", "Read it from FILE");
  input_ = &texts_.emplace_back();
  return *input_;
}

const std::vector<std::string>& CommandLine::Operands(const char* name, const char* help) {
  app_->prefix_command();
  operandNames_.append(" ").append(name);
  helpLines_ += HelpLine(name, help);
  return operands_;
}

const bool& CommandLine::Flag(const char* names, const char* help) {
  bool& value = flags_.emplace_back(false);
  app_->add_flag(names, value);
  helpLines_ += HelpLine(names, help);
  return value;
}

const bool& CommandLine::NullFlag() {
  return Flag("-0, --null", "End each item with NUL, not a newline");
}

const std::optional<std::string>& CommandLine::Option(const char* names, const char* value,
                                                      const char* help) {
  std::optional<std::string>& option = options_.emplace_back();
  app_->add_option_function<std::string>(names, [&](const std::string& text) { option = text; });
  helpLines_ += HelpLine(std::string(names) + " " + value, help);
  return option;
}

void CommandLine::Notes(const char* text) { notes_ = text; }

void CommandLine::Parse() {
  std::reverse(arguments_.begin(), arguments_.end());  // as the parser wants them
  try {
    app_->parse(arguments_);
  } catch (const CLI::CallForHelp&) {
    throw HelpRequest();
  } catch (const CLI::ParseError& error) {
    throw UsageError(error.what());
  }
  operands_ = app_->remaining();
  if (!operands_.empty() && operands_[0] == "--") {
    operands_.erase(operands_.begin());
  } else if (!operands_.empty() && operands_[0].size() > 1 && operands_[0][0] == '-') {
    throw UsageError(operands_[0] + ": no such option");
  }
  if (input_ == nullptr) return;
  if (*inputOperand_ && *inputFile_) throw UsageError("an operand and a file are given");
  if (*inputOperand_) {
    *input_ = **inputOperand_;
  } else {
    *input_ = *inputFile_ ? ReadFile(**inputFile_) : ReadAll(stdin, "standard input");
  }
}

std::string CommandLine::Help() const {
  std::string text = std::string("Usage: gxutil ") + command_.name + " [OPTION]..." +
                     operandNames_ + "\n\n" + command_.summary + ".";
  if (std::strcmp(command_.name, command_.function) != 0)
    text.append(" Calls ").append(command_.function) += "().";
  text.append("\n\n").append(helpLines_) += HelpLine("-h, --help", "Print this text");
  if (!notes_.empty()) text.append("\n").append(notes_) += "\n";
  return text + "\nExample:\n  " + command_.example + "\n";
}

long ReadNumber(const std::string& text) {
  long number = 0;
  const char* end = text.data() + text.size();
  const auto [next, error] = std::from_chars(text.data(), end, number);
  if (error == std::errc::result_out_of_range) throw UsageError(text + ": out of range");
  if (error != std::errc() || next != end) throw UsageError(text + ": not a decimal number");
  return number;
}

}  // namespace gxutil
