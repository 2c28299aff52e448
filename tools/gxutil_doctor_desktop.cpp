// The desktop, as ShowInFileManager() finds it. Neither a bus nor a file manager is started.

#include "gxclient_util.h"
#include "gxutil_doctor.h"
#include "internal/environment.h"

namespace gxutil {
namespace {

using GXInternal::Environment;
using GXInternal::SessionBusAddress;

std::string Displays() {
  return GXUtils::Strip(Environment("WAYLAND_DISPLAY") + " " + Environment("DISPLAY"), " ");
}

// Whether the bus answers a question about its names. dbus-send itself waits without end for a bus
// that accepts connections and says nothing.
bool AskBus(const char* method, std::string* answer) {
  const char* const argv[] = {"timeout",
                              "5",
                              "dbus-send",
                              "--session",
                              "--print-reply",
                              "--reply-timeout=3000",
                              "--dest=org.freedesktop.DBus",
                              "/org/freedesktop/DBus",
                              method,
                              nullptr};
  answer->clear();
  int exitCode = -1;
  return GXUtils::System(argv, answer, &exitCode) == 0 && exitCode == 0;
}

Fact NoAnswer(const std::string& said) {
  return {said.empty() ? "unknown" : said, "the session bus does not answer",
          "Log out of the desktop and in again."};
}

Fact Program(const char* name, const std::string& package) {
  const std::string path = GXUtils::Which(name);
  return {path.empty() ? "none in PATH (Debian's package " + package + " has it)" : path};
}

}  // namespace

Fact Desktop() {
  const std::string name = Environment("XDG_CURRENT_DESKTOP");
  return {name.empty() ? "none (XDG_CURRENT_DESKTOP is not set)" : name};
}

bool HasDesktop() { return !(Environment("XDG_CURRENT_DESKTOP") + Displays()).empty(); }

Fact Opener() {
#ifdef __APPLE__
  const std::string path = GXUtils::Which("open");
  return {path.empty() ? "none" : path};
#else
  return Program("xdg-open", "xdg-utils");
#endif
}

Fact BusTool() { return Program("dbus-send", "dbus-bin"); }

Fact Display() { return {Displays().empty() ? "none" : Displays()}; }

Fact SessionBus() {
  const std::string address = SessionBusAddress();
  return {address.empty() ? "none" : address};
}

Fact FileManager() {
  constexpr char kName[] = "\"org.freedesktop.FileManager1\"";
  const std::string address = SessionBusAddress();
  if (address.empty()) return {"not asked: there is no session bus"};
  for (const char* method : {"autolaunch:", "unixexec:"}) {
    if (address.find(method) == std::string::npos) continue;
    return {"not asked: dbus-send would start a program"};
  }
  for (const char* program : {"dbus-send", "timeout"}) {
    if (GXUtils::Which(program).empty()) return {std::string("not asked: there is no ") + program};
  }
  std::string answer;
  if (!AskBus("org.freedesktop.DBus.ListNames", &answer)) return NoAnswer(answer);
  if (answer.find(kName) != std::string::npos) return {"runs"};
  if (!AskBus("org.freedesktop.DBus.ListActivatableNames", &answer)) return NoAnswer(answer);
  return {answer.find(kName) != std::string::npos ? "starts when asked" : "none"};
}

}  // namespace gxutil
