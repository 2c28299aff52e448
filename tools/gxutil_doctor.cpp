// Looks for the reasons why a client cannot start programs, find its files or show names. It
// creates a temporary file, removes it, and changes nothing else.

#include <algorithm>
#include <cerrno>
#include <clocale>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <langinfo.h>
#include <nettle/version.h>
#include <pwd.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/utsname.h>
#include <unistd.h>
#ifdef __GLIBC__
#include <gnu/libc-version.h>
#endif

#include "gxclient_util.h"
#include "gxutil.h"

namespace gxutil {
namespace {

struct Finding {
  std::string text;
  std::string remedy = {};  // empty: no problem
};

std::string Environment(const char* variable) {
  const char* value = std::getenv(variable);
  return value != nullptr ? value : "";
}

// The reason why a directory cannot be used in this way; empty if it can.
std::string DirectoryProblem(const std::string& path, int mode) {
  return access((path + "/.").c_str(), mode) == 0 ? "" : std::strerror(errno);
}

// Runs a command line, for 5 seconds at most.
bool Succeeds(const std::string& command, std::string* output = nullptr) {
  const std::string timeout = GXUtils::Which("timeout").empty() ? "" : "timeout 5 ";
  int exitCode = -1;
  return GXUtils::System(timeout + command, output, &exitCode) == 0 && exitCode == 0;
}

std::string Distribution() {
  std::ifstream file("/etc/os-release");
  std::string line;
  while (line.rfind("PRETTY_NAME=", 0) != 0 && std::getline(file, line)) continue;
  return GXUtils::Strip(line.substr(line.find('=') + 1), "\"'");
}

Finding Version() {
  utsname name{};
  (void)uname(&name);
  std::string text = std::string("gxclient_util ") + GXUTIL_VERSION;
  text += ", nettle " + std::to_string(nettle_version_major()) + ".";
  text += std::to_string(nettle_version_minor());
  text += ", " + Distribution() + ", " + name.sysname + " " + name.release + " " + name.machine;
#ifdef __GLIBC__
  text += std::string(", glibc ") + gnu_get_libc_version();
#endif
  return {text};
}

Finding Locale() {
  if (std::setlocale(LC_ALL, "") == nullptr) {  // as main() did
    return {"LC_ALL=" + Environment("LC_ALL") + " LANG=" + Environment("LANG") + " not installed",
            "Install the Debian package locales-all, or set LC_ALL to C.UTF-8."};
  }
  const std::string text =
      std::setlocale(LC_CTYPE, nullptr) + std::string(", encoding ") + nl_langinfo(CODESET);
  const std::string letters = GXUtils::Transcode("UTF-8", "", "äłωяאاกあ漢");
  const auto isLetter = [](unsigned char byte) { return byte >= 0x80; };
  if (std::any_of(letters.begin(), letters.end(), isLetter)) return {text};
  return {text + ", has no accented letters: file and user names lose these letters",
          "Set LC_ALL to a UTF-8 locale, such as C.UTF-8, and log in again."};
}

Finding User() {
  const int logged = LoggedLines();
  const std::string name = GXUtils::calcRunningUser();
  if (name.empty()) return {"no user name found", "Set LOGNAME to the user's name."};
  if (LoggedLines() == logged || !Locale().remedy.empty()) return {name};
  return {name + ": the name has lost letters", "Set LOGNAME in the encoding of the locale."};
}

// The rule of calcHomeDir(), which would create the settings directory.
std::string HomeDirectory() {
  std::string home = Environment("HOME");
  if (home != "/") return home;
  const std::string user = GXUtils::Transcode("UTF-8", "", GXUtils::calcRunningUser());
  const passwd* entry = getpwnam(user.c_str());
  return entry != nullptr ? entry->pw_dir : "/root";
}

Finding Home() {
  const std::string remedy = "Set HOME to a directory that this user may enter.";
  const std::string home = HomeDirectory();
  if (home.empty()) return {"HOME is not set or empty", remedy};
  const std::string problem = DirectoryProblem(home, X_OK);
  if (!problem.empty()) return {home + ": " + problem, remedy};
  struct stat info = {};
  const bool isOwn = stat(home.c_str(), &info) == 0 && info.st_uid == getuid();
  return {home + (isOwn ? "" : " (belongs to another user)")};
}

Finding Settings() {
  const std::string home = HomeDirectory();
  const std::string directory = home + "/.gannorex";
  if (!Home().remedy.empty()) return {directory + ": not checked, see home"};
  struct stat info = {};
  const bool exists = lstat(directory.c_str(), &info) == 0;
  const std::string problem = DirectoryProblem(exists ? directory : home, W_OK | X_OK);
  if (problem.empty()) return {directory + (exists ? "" : " (does not exist yet)")};
  return {directory + ": " + problem,
          "Make it a directory that this user may write. The client keeps its settings there."};
}

Finding TemporaryFiles() {
  const std::string path = GXUtils::GenerateTempFile("gxutil", nullptr);
  if (path.empty()) {
    return {std::string("cannot create a file in /tmp: ") + std::strerror(errno),
            "Ask an administrator to make /tmp writable (mode 1777) and to free space there."};
  }
  (void)GXUtils::UnlinkOrTruncate(path.c_str());
  return {"can be created in /tmp"};
}

Finding WorkingDirectory() {
  std::error_code error;
  const std::filesystem::path path = std::filesystem::current_path(error);
  if (!error) return {path.native()};
  return {"deleted, or not accessible", "Start the client in a directory that exists."};
}

Finding SearchPath() {
  const std::string path = Environment("PATH");
  for (const std::string& entry : GXUtils::SplitString(path, ':')) {
    if (!entry.empty() && DirectoryProblem(entry, X_OK).empty()) return {path};
  }
  return {"PATH='" + path + "' names no directory that can be searched",
          "Set PATH, as in PATH=/usr/local/bin:/usr/bin:/bin"};
}

Finding FileDescriptors() {
  constexpr rlim_t kNeeded = 6;  // the pipes of SystemNowait()
  rlimit limit{};
  (void)getrlimit(RLIMIT_NOFILE, &limit);
  rlim_t used = 0;  // 0 to 2 count: the pipes are above them
  for (rlim_t fd = 0; fd < std::min<rlim_t>(limit.rlim_cur, 65536); ++fd) {
    if (fd <= STDERR_FILENO || fcntl(static_cast<int>(fd), F_GETFD) >= 0) ++used;
  }
  const std::string text = std::to_string(used) + " of " + std::to_string(limit.rlim_cur) + " used";
  if (limit.rlim_cur >= used + kNeeded) return {text};
  return {text + ": almost none left: some programs cannot be started",
          "Raise the limit with 'ulimit -n' before you start the client."};
}

Finding StartProgram() {
  if (Succeeds("true")) return {"works"};
  if (!SearchPath().remedy.empty()) return {"does not work, see search path"};
  if (!FileDescriptors().remedy.empty()) return {"does not work, see file descriptors"};
  return {"'true' cannot be run",
          "Add its directory, /bin, to PATH, or raise the limit of processes (ulimit -u)."};
}

Finding NoticeExit() {
  struct sigaction action = {};
  (void)sigaction(SIGCHLD, nullptr, &action);
  if (action.sa_handler != SIG_IGN) return {"works"};
  return {"SIGCHLD is ignored, so the client cannot notice when a program exits",
          "Start the client from a terminal. The program that starts it now passes this setting "
          "on."};
}

Finding StandardStreams() {
  std::string closed;
  if (fcntl(STDIN_FILENO, F_GETFD) < 0) closed += " input";
  if (fcntl(STDERR_FILENO, F_GETFD) < 0) closed += " error";
  if (closed.empty()) return {"open"};
  return {"closed:" + closed + " - programs may confuse it with a file that they open",
          "Start the client with </dev/null >/dev/null 2>&1"};
}

Finding RoomOnDisk() {
  std::string text;
  for (const std::string& path : {HomeDirectory(), std::string("/tmp")}) {
    if (path == "/tmp" && !TemporaryFiles().remedy.empty()) continue;
    struct statvfs info = {};
    if (statvfs(path.c_str(), &info) != 0 || info.f_blocks == 0) continue;
    const auto mebibytes = static_cast<unsigned long long>(info.f_bavail) * info.f_frsize >> 20;
    const bool outOfInodes = info.f_files > 0 && info.f_favail == 0;
    text += (text.empty() ? "" : ", ") + path + ": ";
    text += outOfInodes ? "no room for another file" : std::to_string(mebibytes) + " MiB free";
    if (mebibytes > 0 && !outOfInodes) continue;
    return {text, "Delete files in " + path + " that are no longer needed."};
  }
  return {text};
}

constexpr char kNoAnswer[] = "the session bus does not answer";

// The reason why the bus does not show a file; empty if its file manager does.
std::string BusProblem(const std::string& address) {
  if (address.empty()) return "no session bus";
  if (GXUtils::Which("dbus-send").empty()) {
    return "dbus-send not found (install the Debian package dbus-bin)";
  }
  const bool startsProgram = address[0] != '/' && address.rfind("unix:", 0) != 0;
  if (startsProgram) return "session bus not asked, its address may start a program";
  for (const char* method : {"ListNames", "ListActivatableNames"}) {
    std::string answer;
    const std::string ask =
        "dbus-send --session --print-reply --reply-timeout=3000 --dest=org.freedesktop.DBus "
        "/org/freedesktop/DBus org.freedesktop.DBus.";
    if (!Succeeds(ask + method, &answer)) return kNoAnswer;
    if (answer.find("\"org.freedesktop.FileManager1\"") != std::string::npos) return "";
  }
  return "no file manager on the session bus";
}

Finding FileManager() {
  const bool hasDisplay = !(Environment("DISPLAY") + Environment("WAYLAND_DISPLAY")).empty();
  const std::string bus = Environment("XDG_RUNTIME_DIR") + "/bus";
  std::string address = Environment("DBUS_SESSION_BUS_ADDRESS");
  if (address.empty() && GXUtils::CheckFileExist(bus)) address = bus;
  if (!hasDisplay && address.empty()) return {"no desktop session"};
  const std::string problem = BusProblem(address);
  if (problem.empty()) return {"found on the session bus"};
  const std::string opener = GXUtils::Which("xdg-open");
  const bool opens = hasDisplay && !opener.empty() && problem != kNoAnswer;
  const std::string missing = "not found (install the Debian package xdg-utils)";
  return {problem + "; xdg-open " + (opener.empty() ? missing : opener),
          opens ? "" : "Install the missing program. Then log out of the desktop and in again."};
}

constexpr std::pair<const char*, Finding (*)()> kChecks[] = {
    {"version", Version},
    {"locale", Locale},
    {"user", User},
    {"home", Home},
    {"settings", Settings},
    {"temporary files", TemporaryFiles},
    {"working directory", WorkingDirectory},
    {"search path", SearchPath},
    {"start a program", StartProgram},
    {"notice its exit", NoticeExit},
    {"standard streams", StandardStreams},
    {"file descriptors", FileDescriptors},
    {"room on disk", RoomOnDisk},
    {"file manager", FileManager},
};

// A line of the report stays a line, whatever the environment holds.
std::string Printable(std::string text) {
  for (char& byte : text) {
    if (static_cast<unsigned char>(byte) < ' ') byte = ' ';
  }
  return text;
}

}  // namespace

int Doctor(CommandLine& line) {
  constexpr std::size_t kColumn = 19;
  line.Notes(
      "The mark ! shows a problem; the next line has the remedy. If the report does\n"
      "not end, its last line names the check that hangs.");
  line.Parse();
  QuietLog();
  int problems = 0;
  for (const auto& [name, look] : kChecks) {
    std::string label = name;
    label.resize(kColumn, ' ');
    (void)PrintBytes(label);
    Flush();  // a check that hangs names itself
    if (OutputFailed()) return kFailure;
    const Finding finding = look();
    const bool isProblem = !finding.remedy.empty();
    (void)PrintLine((isProblem ? "! " : "  ") + Printable(finding.text));
    if (!isProblem) continue;
    ++problems;
    (void)PrintLine(std::string(kColumn + 2, ' ') + finding.remedy);
  }
  if (problems == 0) return PrintLine("No problems found.");
  (void)PrintLine(std::to_string(problems) + (problems == 1 ? " problem" : " problems") +
                  " found (marked !). This report names the user, the home directory and PATH.");
  return kFailure;
}

}  // namespace gxutil
