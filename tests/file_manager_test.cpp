// The desktop is made of a stand-in for its programs, desktop/program.

#include <cstring>
#include <vector>

#include <poll.h>

#include "harness/harness.h"
#include "internal/descriptor.h"
#include "support/osx_show_in_file_manager.h"

using namespace std::string_literals;

namespace {

const TempDir kTop;  // where the test works
const std::string kName = "a-z_A.Z~09@[`{: ,'\"%41\\\nü\xFF";
const std::string kEscapedName = "a-z_A.Z~09%40%5B%60%7B%3A%20%2C%27%22%2541%5C%0A%C3%BC%FF";
const std::string kAsk =
    "dbus-send --session --print-reply --reply-timeout=5000 --dest=org.freedesktop.FileManager1 "
    "/org/freedesktop/FileManager1 org.freedesktop.FileManager1.ShowItems array:string:file://";

constexpr char kBus[] = "DBUS_SESSION_BUS_ADDRESS=x:";
constexpr char kDisplay[] = "DISPLAY=:0";
// The address counts before the runtime directory, which has no bus.
const std::vector<const char*> kBoth = {kBus, kDisplay, "XDG_RUNTIME_DIR=."};

struct Desktop {
  const char* what;
  int status;
  const char *called, *path;  // s: dbus-send, x: xdg-open; `path` is a directory that has them
  std::vector<const char*> environment;
  const char* does = "";  // what dbus-send does, in the terms of the stand-in
  const char* call = "";  // is interrupted or fails with EINTR: the first one,
  int runs = 1;           // in a second run the second one, ...
  std::string item = kName, uri = "/" + kEscapedName;  // in kTop, but for an absolute one
  std::string directory = "";
};

const Desktop kDesktops[] = {
    {"an answer", 0, "s", "sx", kBoth, "answer"},
    {"no reply", 3, "s", "sx", kBoth, "fail NoReply 'warning\n'"},
    {"time-out", 3, "s", "sx", kBoth, "fail Timeout"},
    {"timed out", 3, "s", "sx", kBoth, "fail TimedOut"},
    {"the time limit", 3, "s", "sx", kBoth, "kill -ALRM $$"},
    {"killed", 0, "sx", "sx", kBoth, "kill -KILL $$"},
    {"another error", 0, "sx", "sx", {kBus, "WAYLAND_DISPLAY=wayland-0"}, "refuse"},
    {"something left behind that holds the error output", 2, "s", "s", {kBus}, "live & exit 1"},
    {"no display", 2, "s", "sx", {kBus}, "refuse"},
    {"no xdg-open", 2, "s", "s", kBoth, "refuse"},
    {"no dbus-send", 0, "x", "x", kBoth},
    {"no bus", 0, "x", "sx", {kDisplay}},
    {"no such bus", 0, "x", "sx", {"XDG_RUNTIME_DIR=.", kDisplay}},
    {"an empty address", 0, "s", "sx", {"DBUS_SESSION_BUS_ADDRESS=", "XDG_RUNTIME_DIR=u"}},
    {"a link to the bus, which libdbus refuses", 0, "x", "sx", {"XDG_RUNTIME_DIR=l", kDisplay}},
    {"pipe", 2, "", "s", {kBus}, "", "pipe", 2},
    {"fcntl", 2, "", "s", {kBus}, "", "fcntl", 4},
    {"fork", 2, "", "s", {kBus}, "", "fork", 2},
    {"read", 0, "s", "s", {kBus}, "", "read", 3},
    {"poll", 0, "s", "s", {kBus}, "", "poll", 2},
    {"waitpid", 0, "s", "s", {kBus}, "", "waitpid", 1},
    {"close_range", 0, "s", "s", {kBus}, "", "syscall", 2},
    {"pipe for xdg-open", 2, "", "x", {kDisplay}, "", "pipe", 1},
    {"fcntl for xdg-open", 2, "", "x", {kDisplay}, "", "fcntl", 2},
    {"fork for xdg-open", 2, "", "x", {kDisplay}, "", "fork", 2},
    {"read for xdg-open", 0, "x", "x", {kDisplay}, "", "read", 1},
    {"a bus", 0, "sx", "sx", kBoth, "refuse", "", 1, "u/bus", "/u/bus", "/u"},
    {"a link to nothing", 0, "sx", "sx", kBoth, "refuse", "", 1, "l/such\0x"s, "/l/such", "/l"},
    {"slashes", 0, "sx", "sx", kBoth, "refuse", "", 1, "l//", "/l//"},
    {"the root directory", 0, "sx", "sx", kBoth, "refuse", "", 1, "/", "/", "/"},
    {"nothing", 1, "", "sx", {kDisplay}, "", "", 1, "missing"},
    {"no name", 1, "", "sx", {kDisplay}, "", "", 1, ""},
};

// Named pipes: the programs write to the first one; xdg-open, and what is left behind, lives until
// the second one has a line for it.
GXInternal::UniqueFd calls, gate;

void Show(const Desktop& desktop) {
  const std::string top = desktop.item[0] == '/' ? "" : kTop.path;
  (void)clearenv();
  for (const char* variable : desktop.environment) (void)putenv(const_cast<char*>(variable));
  (void)setenv("PATH", desktop.path, 1);
  (void)setenv("DOES", desktop.does, 1);
  (void)setenv("SESSION", std::to_string(getsid(0)).c_str(), 1);
  for (int nth = 1; nth <= desktop.runs; ++nth) {
    SCOPED_TRACE(testing::Message() << desktop.what << " " << nth);
    const LeakCheck leaks;
    {
      const Failing fault(desktop.call, nth, EINTR);
      EXPECT_EQ(osxShowInFileManager(desktop.item), desktop.status);
    }
    for (const char program : std::string(desktop.called)) {
      const std::string call = program == 's' ? kAsk + top + desktop.uri + " string:\n"
                                              : "xdg-open " + top + desktop.directory + "\n";
      std::string called(call.size(), '?');
      pollfd ready = {calls.Get(), POLLIN, 0};  // within ten seconds
      if (poll(&ready, 1, 10000) == 1) (void)!read(ready.fd, called.data(), called.size());
      EXPECT_EQ(called, call);
    }
    const bool lives = std::strchr(desktop.called, 'x') || std::strstr(desktop.does, "live");
    if (lives) (void)!write(gate.Get(), "\n", 1);
  }
}

TEST(ShowInFileManager, TakesWhatTheDesktopHas) {
  std::filesystem::current_path(kTop.path);
  const std::string makeDesktop =
      "mkdir s x sx u l && mkfifo calls gate && ln -s ../u/bus /no/such l &&"
      "for program in s/dbus-send sx/dbus-send x/xdg-open sx/xdg-open; do ln -s '"s +
      DESKTOP + "/program' $program; done";
  ASSERT_EQ(std::system(makeDesktop.c_str()), 0);
  ASSERT_EQ(mknod("u/bus", S_IFSOCK | 0600, 0) + mknod(kName.c_str(), S_IFREG, 0), 0);
  calls.Reset(open("calls", O_RDWR));
  gate.Reset(open("gate", O_RDWR));
  const GXInternal::UniqueFd inherited(dup2(STDERR_FILENO, 900));
  void (*const handlers[])(int) = {SIG_DFL, SIG_IGN, ReapAll};
  sigset_t others;
  sigfillset(&others);
  sigdelset(&others, SIGCHLD);
  // Whichever standard descriptors the client has closed, and whatever it does about signals.
  for (int closed = 0; closed < 8; ++closed) {
    EXPECT_TRUE(PassesInChild([&] {
      for (int fd = 0; fd < 3; ++fd) (void)((closed >> fd & 1) != 0 && close(fd));
      (void)std::signal(SIGCHLD, handlers[closed % 3]);
      (void)std::signal(SIGALRM, SIG_IGN);
      (void)sigprocmask(SIG_BLOCK, &others, nullptr);
      for (const Desktop& desktop : kDesktops) Show(desktop);
    })) << closed;
  }
}

}  // namespace
