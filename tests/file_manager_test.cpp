#include <cerrno>
#include <csignal>
#include <cstring>
#include <fstream>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "harness/faults.h"
#include "harness/leakcheck.h"
#include "harness/scopedenv.h"
#include "harness/tempdir.h"
#include "support/osx_show_in_file_manager.h"

using namespace std::string_literals;

namespace {

const std::string kName = "a-z_A.Z~09@[`{: ,'\"%41\\\n\xC3\xBC\xFF";
const std::string kEscapedName = "a-z_A.Z~09%40%5B%60%7B%3A%20%2C%27%22%2541%5C%0A%C3%BC%FF";

const std::string kAsk =
    "dbus-send --session --print-reply --reply-timeout=5000 --dest=org.freedesktop.FileManager1 "
    "/org/freedesktop/FileManager1 org.freedesktop.FileManager1.ShowItems array:string:file://";

// Stands in for both programs: writes down its name and arguments, and what is wrong.
constexpr char kStandIn[] = R"(#!/bin/sh
line="${0##*/} $*"
read -r x x x x x session x </proc/$$/stat
[ "$session" = "$SESSION" ] && [ "${0##*/}" = xdg-open ] && line="$line attached"
[ /proc/$$/fd/2 -ef /dev/null ] || [ "${0##*/}" = dbus-send ] || line="$line errors"
[ /proc/$$/fd/0 -ef /dev/null ] && [ /proc/$$/fd/1 -ef /dev/null ] || line="$line streams"
[ ! -e /proc/$$/fd/3 ] && [ ! -e /proc/$$/fd/900 ] || line="$line descriptor"
echo "$line" >"$CALLS"
PATH=/usr/bin:/bin
)";
constexpr char kAnswer[] = "[ ! -x /usr/bin/perl ] || exec perl -e 'exit !alarm 0'";
constexpr char kOther[] =
    "echo Error a: Error org.freedesktop.DBus.Error.NoReply: >&2; printf %0200000d >&2; exit 1";

std::string Fails(const std::string& name) {
  return "printf 'w\nError org.freedesktop.DBus.Error." + name + ": x' >&2; exit 1";
}

// `has` names what is there: s dbus-send, x xdg-open, b the address of a bus, e an empty one, u the
// user's own bus, l a link to it (which libdbus refuses), d a display, w Wayland.
struct Row {
  const char* has;
  std::string script;  // what the programs do
  int status;
  const char* calls;  // the programs called
  const char* fault = "none";
  int faults = 1;  // so many runs: the first call fails, the second one fails, ...
  int error = 0;
};

struct Desktop {
  Desktop() {
    const std::string make = "cd " + top + "; mkdir u l; ln -s ../u/bus /no/such l; mkfifo calls";
    EXPECT_EQ(std::system(make.c_str()), 0);
    EXPECT_EQ(mknod((top + "/u/bus").c_str(), S_IFSOCK | 0600, 0), 0);
    calls.open(top + "/calls");
    (void)dup2(STDERR_FILENO, 900);
  }

  void Show(const Row& row, const std::string& path, const std::string& uri,
            const std::string& folder) {
    const auto has = [&](char what) { return std::strchr(row.has, what) != nullptr; };
    const std::string runtimeDir = top + (has('u') ? "/u" : has('l') ? "/l" : "");
    const ScopedEnv runtime("XDG_RUNTIME_DIR", runtimeDir.c_str());
    const ScopedEnv bus("DBUS_SESSION_BUS_ADDRESS", has('b') ? "x:" : has('e') ? "" : nullptr);
    const ScopedEnv display("DISPLAY", has('d') ? ":0" : "");
    const ScopedEnv wayland("WAYLAND_DISPLAY", has('w') ? "wayland-0" : nullptr);
    const ScopedEnv search("PATH", top.c_str());
    const ScopedEnv record("CALLS", (top + "/calls").c_str());
    const ScopedEnv session("SESSION", std::to_string(getsid(0)).c_str());
    for (const std::string program : {"/dbus-send", "/xdg-open"}) {
      std::ofstream(top + program) << kStandIn << row.script;
      (void)chmod((top + program).c_str(), has(program == "/xdg-open" ? 'x' : 's') ? 0700 : 0);
    }
    for (int nth = 1; nth <= row.faults; ++nth) {
      SCOPED_TRACE(row.script + " " + row.has + " " + row.fault + std::to_string(nth) + path);
      const LeakCheck leaks;
      const Failing fault(row.fault, nth, row.error);
      EXPECT_EQ(osxShowInFileManager(path), row.status);
      for (const char call : std::string(row.calls)) {
        std::string line;
        std::getline(calls, line);
        EXPECT_EQ(line, call == 's' ? kAsk + uri + " string:" : "xdg-open " + folder);
      }
    }
  }

  const TempDir directory;
  const std::string top = directory.Path();
  std::fstream calls;
};

void ReapOne(int) {
  const int error = errno;
  (void)waitpid(-1, nullptr, WNOHANG);
  errno = error;
}

TEST(ShowInFileManager, TakesWhatTheDesktopHas) {
  const Row rows[] = {{"bdsx", kAnswer, 0, "s"},
                      {"bdsx", Fails("NoReply"), 3, "s"},
                      {"bdsx", Fails("Timeout"), 3, "s"},
                      {"bdsx", Fails("TimedOut"), 3, "s"},
                      {"bdsx", "kill -ALRM $$", 3, "s"},
                      {"bdsx", "kill -KILL $$", 0, "sx"},
                      {"bwsx", kOther, 0, "sx"},
                      {"bsx", kOther, 2, "s"},
                      {"bds", kOther, 2, "s"},
                      {"bdx", "", 0, "x"},
                      {"dsx", "", 0, "x"},
                      {"edsx", "", 0, "x"},
                      {"eudsx", "", 0, "s"},
                      {"ldsx", "", 0, "x"},
                      {"bs", "", 2, "", "pipe", 2, EMFILE},
                      {"bs", "", 2, "", "fcntl", 4, EMFILE},
                      {"bs", "", 2, "", "fork", 2, EAGAIN},
                      {"bs", "", 0, "s", "read", 3, EINTR},
                      {"bs", "", 0, "s", "waitpid", 1, EINTR},
                      {"bs", "", 0, "s", "syscall", 2, ENOSYS},
                      {"dx", "", 2, "", "pipe", 1, EMFILE},
                      {"dx", "", 2, "", "fcntl", 2, EMFILE},
                      {"dx", "", 2, "", "fork", 2, EAGAIN},
                      {"dx", "", 0, "x", "read", 1, EINTR}};
  const Row both = {"bdsx", kOther, 0, "sx"};
  const Row nothing = {"bdsx", kOther, 1, ""};
  Desktop desktop;
  const std::string& top = desktop.top;
  std::ofstream(top + "/" + kName) << "";
  // Whichever standard descriptors the client has closed, whatever it does about signals.
  for (int closed = 0; closed < 8; ++closed) {
    const bool passes = PassesInChild([&] {
      for (int fd = 0; fd < 3; ++fd) {
        if ((closed >> fd & 1) != 0) close(fd);
      }
      (void)std::signal(SIGCHLD, closed < 3 ? SIG_DFL : closed < 6 ? SIG_IGN : ReapOne);
      (void)std::signal(SIGALRM, SIG_IGN);
      sigset_t alarm;
      sigemptyset(&alarm);
      sigaddset(&alarm, SIGALRM);
      (void)sigprocmask(SIG_BLOCK, &alarm, nullptr);
      EXPECT_EQ(chdir(top.c_str()), 0);
      for (const Row& row : rows) {
        desktop.Show(row, kName, desktop.directory.Path(kEscapedName), top);
      }
      desktop.Show(both, top + "/u/bus", top + "/u/bus", top + "/u");
      desktop.Show(both, top + "/l/such\0x"s, top + "/l/such", top + "/l");
      desktop.Show(both, "l//", top + "/l//", top);
      desktop.Show(both, "/", "/", "/");
      desktop.Show(nothing, "missing", "", "");
      desktop.Show(nothing, "", "", "");
    });
    EXPECT_TRUE(passes) << closed;
  }
}

// A file manager on a bus of its own, until it is asked for "mute". Prints the bus, then the calls.
constexpr char kService[] = R"(exec 2>/dev/null dbus-run-session -- /usr/bin/python3 - <<'END'
import os
from gi.repository import Gio, GLib
def show(connection, sender, path, interface, method, items, call):
    print(items.print_(False), flush=True)
    loop.quit() if 'mute' in items[0][0] else call.return_value(None)
def own(bus, name): bus.register_object('/org/freedesktop/FileManager1', node.interfaces[0], show)
def ready(bus, name): print(os.environ['DBUS_SESSION_BUS_ADDRESS'], flush=True)
node = Gio.DBusNodeInfo.new_for_xml("""<node><interface name='org.freedesktop.FileManager1'>
<method name='ShowItems'><arg type='as'/><arg type='s'/></method></interface></node>""")
loop = GLib.MainLoop()
Gio.bus_own_name(Gio.BusType.SESSION, 'org.freedesktop.FileManager1', 0, own, ready, None)
loop.run()
END)";

TEST(ShowInFileManager, ReachesAFileManager) {
  const TempDir directory;
  const ScopedEnv display("DISPLAY", nullptr);
  const ScopedEnv wayland("WAYLAND_DISPLAY", nullptr);
  std::FILE* service = popen(kService, "r");
  char line[1000] = "";
  const bool there = std::fgets(line, sizeof line, service) != nullptr;
  const ScopedEnv bus("DBUS_SESSION_BUS_ADDRESS", std::strtok(line, "\n"));
  for (const std::string end : {"", "mute"}) {
    if (!there) break;
    std::ofstream(directory.Path(kName + end)) << "";
    EXPECT_EQ(osxShowInFileManager(directory.Path(kName + end)), end.empty() ? 0 : 3);
    EXPECT_NE(std::fgets(line, sizeof line, service), nullptr);
    EXPECT_EQ(line, "(['file://" + directory.Path(kEscapedName + end) + "'], '')\n");
  }
  pclose(service);
  if (!there) GTEST_SKIP() << "needs dbus-run-session, python3 and gi";
}

}  // namespace
