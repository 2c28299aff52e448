// What the module finds on this machine, for whoever has to learn why a client cannot start a
// program or find its files.

#include "gxutil_doctor.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include <unistd.h>

#include "gxclient_util.h"
#include "gxutil.h"
#include "internal/lifetime.h"

namespace gxutil {
namespace {

struct Question {
  const char* name;
  Fact (*answer)();
};

// With a second line for each that can be wrong, they fit on a screen of 40 lines.
constexpr Question kQuestions[] = {
    {"module", ModuleVersion},
    {"system", SystemVersion},
    {"distribution", Distribution},
    {"desktop", Desktop},
    {"variables", LanguageVariables},
    {"locale", Locale},
    {"encoding", Encoding},
    {"user", RunningUser},
    {"home", Home},
    {"per-user", PerUserDirectory},
    {"temporary", TemporaryDirectory},
    {"directory", WorkingDirectory},
    {"umask", Umask},
    {"PATH", SearchPath},
    {"programs", RunProgram},
    {"program end", ProgramEnd},
    {"streams", StandardStreams},
    {"open files", OpenFiles},
    {"processes", Processes},
    {"speed", SpeedFigure},
    {"opener", Opener},
#ifndef __APPLE__
    {"dbus-send", BusTool},
    {"display", Display},
    {"session bus", SessionBus},
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

void PrintEntry(const std::string& head, const std::string& text) {
  constexpr std::size_t kColumn = 16;
  std::string line = head;
  line.resize(std::max(line.size() + 1, kColumn), ' ');
  (void)PrintLine(line + Printable(text));
}

void PrintFact(const std::string& name, const Fact& fact) {
  if (fact.trouble.empty()) {
    PrintEntry("  " + name + ":", fact.value);
  } else {
    PrintEntry("! " + name + ":", Printable(fact.value) + " - " + fact.trouble);
    PrintEntry("!", fact.advice);
  }
  (void)std::fflush(stdout);
}

const char* volatile asked = "";  // the fact that is being found out

void Write(const char* text) { (void)!write(STDOUT_FILENO, text, std::strlen(text)); }

// Says what takes so long. Async-signal-safe.
[[noreturn]] void EndLate(int /*signal*/) {
  Write("! ");
  Write(asked);
  Write(": takes too long - what would follow was not looked at\n");
  _exit(kFailure);
}

int Examine() {
  constexpr unsigned kLongest = 30;  // seconds: a lookup over the network may take for ever
  GXInternal::LimitLifetime(kLongest, EndLate);
  const KeptLog log;  // the facts say what is wrong
  int status = 0;
  for (const Question& question : kQuestions) {
    asked = question.name;
    const Fact fact = question.answer();
    PrintFact(question.name, fact);
    if (!fact.trouble.empty()) status = kFailure;
  }
  return status;
}

}  // namespace

void AddDoctorCommand(CLI::App& app) {
  Add(app, "doctor", "Print what is found here; '!' marks what is wrong", [](CLI::App& command) {
    command.footer(
        "A second line tells what to do about what is wrong; the exit status is 1 then.\n"
        "Makes nothing but a file in /tmp, which it removes again. Where a fact takes too\n"
        "long, the command ends after 30 seconds and says which one it was. A dead mount\n"
        "may hold it longer: look at what comes after the last line.");
    return [] { return Examine(); };
  });
}

}  // namespace gxutil
