// What the module finds on this machine, for whoever has to learn why a client cannot start a
// program or find its files. Nothing is made but a file in /tmp, which is removed again.

#include <algorithm>
#include <cerrno>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <numeric>
#include <system_error>

#include <fcntl.h>
#include <iconv.h>
#include <langinfo.h>
#include <nettle/version.h>
#include <sys/resource.h>
#include <sys/utsname.h>
#include <unistd.h>
#ifdef __GLIBC__
#include <gnu/libc-version.h>
#endif

#include "gxclient_util.h"
#include "gxutil.h"
#include "gxutil_doctor.h"
#include "internal/descriptor.h"
#include "internal/home.h"
#include "internal/lifetime.h"
#include "support/gxclient_prefix.h"

namespace gxutil {
namespace {

std::string ErrorText() { return std::strerror(errno); }

// Why the caller has not this access to a directory; empty when it has. An empty path is the root
// directory.
std::string DirectoryTrouble(const std::string& path, int mode) {
  return access((path + "/.").c_str(), mode) == 0 ? std::string() : ErrorText();
}

Fact ModuleVersion() {
  return {"gxclient_util " GXUTIL_VERSION ", nettle " + std::to_string(nettle_version_major()) +
          "." + std::to_string(nettle_version_minor())};
}

Fact SystemVersion() {
  utsname name{};
  if (uname(&name) != 0) return {"unknown"};
  std::string text = std::string(name.sysname) + " " + name.release + " " + name.machine;
#ifdef __GLIBC__
  text.append(", glibc ").append(gnu_get_libc_version());
#endif
  return {text};
}

Fact Locale() {
  const bool installed = std::setlocale(LC_ALL, "") != nullptr;  // as main() did
  const std::string name = std::setlocale(LC_CTYPE, nullptr);
  if (installed) return {name};
  return {name, "LANG or an LC_ variable names a locale that is not installed"};
}

bool Converts(const char* from, const char* to) {
  const iconv_t descriptor = iconv_open(to, from);
  return descriptor != reinterpret_cast<iconv_t>(-1) && iconv_close(descriptor) == 0;
}

Fact Encoding() {
  const std::string name = nl_langinfo(CODESET);
  if (!Converts("", "UTF-8")) return {name, "iconv does not convert it to UTF-8"};
  if (!Converts("UTF-8", "")) return {name, "iconv does not convert UTF-8 to it"};
  const bool drops = Converts("UTF-8", "//IGNORE");  // as Transcode() opens the locale's encoding
  return {name + (drops ? ", drops" : ", stops at") + " characters it does not have"};
}

Fact RunningUser() {
  const std::string name = GXUtils::calcRunningUser();
  const std::string value = name + " (user id " + std::to_string(getuid()) + ")";
  if (!name.empty()) return {value};
  return {value, "neither LOGNAME, USERNAME, USER nor the password database gives a name"};
}

Fact Home() {
  const std::string home = GXSupport::HomeDirectory(GXUtils::calcRunningUser());
  if (home.empty()) return {"none", "HOME is not set or empty"};
  return {home, DirectoryTrouble(home, X_OK)};
}

Fact PerUserDirectory() {
  const std::string home = GXSupport::HomeDirectory(GXUtils::calcRunningUser());
  const std::string directory = home + "/" + GXSupport::kPerUserDirectory;
  std::error_code error;
  if (std::filesystem::exists(std::filesystem::symlink_status(directory, error))) {
    return {directory, DirectoryTrouble(directory, W_OK | X_OK)};
  }
  return {directory + " (not made yet)", DirectoryTrouble(home, W_OK | X_OK)};
}

// Entries that cannot be searched are common and harmless as long as another one can.
Fact SearchPath() {
  const char* path = std::getenv("PATH");
  if (path == nullptr) return {"none", "PATH is not set"};
  std::string notes;
  bool searchable = false;
  for (const std::string& entry : GXUtils::SplitString(path, ':')) {
    const std::string trouble = DirectoryTrouble(entry, X_OK);
    searchable = searchable || trouble.empty();
    if (entry.empty()) notes += " (an empty entry: / for Which, the working directory for System)";
    if (!trouble.empty()) notes.append(" (").append(entry).append(": ").append(trouble) += ")";
  }
  return {path + notes, searchable ? "" : "no entry can be searched"};
}

Fact RunProgram() {
  int exitCode = -1;
  const int result = GXUtils::System("true", nullptr, &exitCode);
  const std::string value =
      "true: result " + std::to_string(result) + ", exit status " + std::to_string(exitCode);
  return {value, result == 0 && exitCode == 0 ? "" : "a program cannot be run"};
}

Fact ChildSignal() {
  struct sigaction action {};
  (void)sigaction(SIGCHLD, nullptr, &action);
  if (action.sa_handler == SIG_IGN) {
    return {"ignored", "inherited; how a program ended is lost to whoever waits for it"};
  }
  return {action.sa_handler == SIG_DFL ? "default action" : "handler"};
}

bool IsOpen(int fd) { return fcntl(fd, F_GETFD) >= 0; }

// From the system's list; where there is none (a bare chroot), the numbers that ordinary limits
// reach are tried.
std::vector<int> OpenDescriptors() {
  std::vector<int> candidates;
  std::error_code error;
  for (std::filesystem::directory_iterator entry("/dev/fd", error), end; entry != end;
       entry.increment(error)) {
    candidates.push_back(std::atoi(entry->path().filename().c_str()));
  }
  if (error) {
    candidates.resize(65536);
    std::iota(candidates.begin(), candidates.end(), 0);
  }
  std::vector<int> open;  // without that of the list itself, which is closed by now
  std::copy_if(candidates.begin(), candidates.end(), std::back_inserter(open), IsOpen);
  return open;
}

Fact StandardDescriptors() {
  std::string closed;
  for (int fd = STDIN_FILENO; fd <= STDERR_FILENO; ++fd) {
    if (!IsOpen(fd)) closed += " " + std::to_string(fd);
  }
  if (closed.empty()) return {"open"};
  return {"closed:" + closed, "programs inherit that, and may open a file in its place"};
}

std::string LimitText(rlim_t limit) {
  return limit == RLIM_INFINITY ? "unlimited" : std::to_string(limit);
}

Fact Descriptors() {
  constexpr rlim_t kNeeded = 6;  // the pipes of SystemNowait()
  rlimit limit{};
  (void)getrlimit(RLIMIT_NOFILE, &limit);
  const std::vector<int> open = OpenDescriptors();
  rlim_t taken = STDERR_FILENO + 1;  // also where one of these is closed: no pipe end stays there
  int above = 0;
  for (const int fd : open) {
    if (fd > STDERR_FILENO && static_cast<rlim_t>(fd) < limit.rlim_cur) ++taken;
    if (fd > GXSupport::kLastClosedFd) ++above;  // programs inherit these
  }
  const std::string value = std::to_string(open.size()) + " open, " + std::to_string(above) +
                            " above 1023; limit " + LimitText(limit.rlim_cur) + ", at most " +
                            LimitText(limit.rlim_max);
  return {value, limit.rlim_cur < taken + kNeeded ? "too few are left to start a program" : ""};
}

Fact TemporaryFile() {
  const std::string path = GXUtils::GenerateTempFile("gxutil", nullptr);
  if (path.empty()) return {"/tmp", ErrorText()};
  if (GXUtils::UnlinkOrTruncate(path.c_str()) != 0) return {path, ErrorText()};
  return {"/tmp takes a private file"};
}

Fact Prefix() { return {gxclient_prefix.empty() ? "none" : gxclient_prefix}; }

Fact SpeedFigure() {
  const int figure = GXUtils::GetBogoMips();
  return {figure < 0 ? "none" : std::to_string(figure)};
}

struct Question {
  const char* name;
  Fact (*answer)();
};

constexpr Question kQuestions[] = {
    {"module", ModuleVersion},
    {"system", SystemVersion},
    {"locale", Locale},
    {"encoding", Encoding},
    {"user", RunningUser},
    {"home", Home},
    {"per-user", PerUserDirectory},
    {"PATH", SearchPath},
    {"run", RunProgram},
    {"SIGCHLD", ChildSignal},
    {"streams", StandardDescriptors},
    {"descriptors", Descriptors},
    {"temporary", TemporaryFile},
    {"prefix", Prefix},
    {"bogomips", SpeedFigure},
    {"opener", Opener},
#ifndef __APPLE__
    {"display", Display},
    {"bus", SessionBus},
    {"file manager", FileManager},
#endif
};

// A line of the report is a line, whatever the environment holds.
std::string Printable(std::string text) {
  for (char& byte : text) {
    if (static_cast<unsigned char>(byte) < ' ' || byte == '\x7F') byte = ' ';
  }
  return GXUtils::Strip(text, " ");
}

void PrintFact(const char* name, const Fact& fact) {
  std::string line = fact.trouble.empty() ? "  " : "! ";
  line.append(name) += ": ";
  line.resize(std::max<std::size_t>(line.size(), 16), ' ');
  line += Printable(fact.value);
  if (!fact.trouble.empty()) line += " - " + Printable(fact.trouble);
  (void)PrintLine(line);
  (void)std::fflush(stdout);
}

int Examine() {
  constexpr unsigned kLongest = 30;  // seconds: a dead network mount would hold it for ever
  GXSupport::LimitLifetime(kLongest);
  int status = 0;
  for (const Question& question : kQuestions) {
    const Fact fact = question.answer();
    PrintFact(question.name, fact);
    if (!fact.trouble.empty()) status = kFailure;
  }
  return status;
}

}  // namespace

void AddDoctorCommand(CLI::App& app) {
  Add(app, "doctor", "Print what the module finds on this machine; '!' marks what is wrong",
      [](CLI::App& command) {
        command.footer(
            "Makes nothing but a file in /tmp, which it removes again. The exit status is 1\n"
            "where a line is marked. Where a fact takes too long, as on a dead network mount,\n"
            "the command ends after 30 seconds: the fact is the one after the last line.");
        return [] { return Examine(); };
      });
}

}  // namespace gxutil
