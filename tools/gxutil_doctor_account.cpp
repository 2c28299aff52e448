// The user and the directories.

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>

#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include "gxclient_util.h"
#include "gxutil.h"
#include "gxutil_doctor.h"
#include "internal/home.h"

namespace gxutil {
namespace {

constexpr char kHomeAdvice[] = "Set HOME to a directory that this user may enter.";
constexpr char kRoomAdvice[] = "Make room there: delete what is not needed any more.";

std::string ErrorText() { return std::strerror(errno); }

// Why the caller has not this access to a directory; empty when it has. An empty path is the root
// directory.
std::string DirectoryTrouble(const std::string& path, int mode) {
  return access((path + "/.").c_str(), mode) == 0 ? std::string() : ErrorText();
}

// A directory with the room that is left in it.
Fact WithRoom(const std::string& path, const std::string& value) {
  constexpr std::uint64_t kMebibyte = 1 << 20;
  struct statvfs info = {};
  if (statvfs((path + "/.").c_str(), &info) != 0 || info.f_blocks == 0) return {value};
  const std::uint64_t room = std::uint64_t{info.f_bavail} * info.f_frsize / kMebibyte;
  const std::string text = value + ", " + std::to_string(room) + " MiB free";
  if (room > 0) return {text};
  return {text, "the disk is full", kRoomAdvice};
}

// What is unusual about a home, and makes settings seem to be gone.
std::string HomeNotes(const std::string& home) {
  std::string notes;
  if (home[0] != '/') notes += " (counts from the working directory)";
  struct stat info = {};
  if (stat(home.c_str(), &info) == 0 && info.st_uid != getuid()) notes += " (of another user)";
  return notes;
}

}  // namespace

Fact RunningUser() {
  const KeptLog log;
  const std::string name = GXUtils::calcRunningUser();
  const std::string value = name + " (user id " + std::to_string(getuid()) + ")";
  if (name.empty()) {
    return {value, "nothing gives this user a name", "Set LOGNAME to the user's name."};
  }
  if (!log.Has("iconv: Bad input data")) return {value};
  return {value, "the name has lost letters", "Give LOGNAME and the locale (LANG) one encoding."};
}

Fact Home() {
  const std::string home = GXInternal::HomeDirectory(GXUtils::calcRunningUser());
  if (home.empty()) return {"none", "HOME is not set or empty", kHomeAdvice};
  const std::string trouble = DirectoryTrouble(home, X_OK);
  if (!trouble.empty()) return {home, trouble, kHomeAdvice};
  return WithRoom(home, home + HomeNotes(home));
}

Fact PerUserDirectory() {
  const std::string home = GXInternal::HomeDirectory(GXUtils::calcRunningUser());
  const std::string directory = home + "/" + GXInternal::kPerUserDirectory;
  const std::string advice =
      "Make it a directory that this user may write: the client keeps its settings in it.";
  std::error_code error;
  if (std::filesystem::exists(std::filesystem::symlink_status(directory, error))) {
    return {directory, DirectoryTrouble(directory, W_OK | X_OK), advice};
  }
  return {directory + " (not made yet)", DirectoryTrouble(home, W_OK | X_OK), advice};
}

Fact TemporaryDirectory() {
  const std::string path = GXUtils::GenerateTempFile("gxutil", nullptr);
  if (path.empty()) {
    return {"/tmp takes no file", ErrorText(),
            "Make /tmp a directory of mode 1777, with room in it, that can be written."};
  }
  if (GXUtils::UnlinkOrTruncate(path.c_str()) != 0) {
    return {path, ErrorText(), "Delete it: it was made to see whether /tmp takes a file."};
  }
  return WithRoom("/tmp", "/tmp takes a private file");
}

Fact WorkingDirectory() {
  std::error_code error;
  const std::filesystem::path path = std::filesystem::current_path(error);
  return {error ? "none: " + error.message() : path.string()};
}

Fact Umask() {
  const mode_t mask = umask(0);
  (void)umask(mask);
  char digits[8];
  (void)std::snprintf(digits, sizeof digits, "%04o", static_cast<unsigned>(mask));
  if ((mask & S_IRWXU) == 0) return {digits};
  return {digits, "the client may not use the files that it makes",
          "Set 'umask 022' in what starts the client."};
}

// Entries that cannot be searched are common and harmless as long as another one can.
Fact SearchPath() {
  const std::string advice = "Set it, as in PATH=/usr/local/bin:/usr/bin:/bin";
  const char* path = std::getenv("PATH");
  if (path == nullptr) return {"none", "PATH is not set", advice};
  std::string notes;
  bool searchable = false;
  for (const std::string& entry : GXUtils::SplitString(path, ':')) {
    const std::string trouble = DirectoryTrouble(entry, X_OK);
    searchable = searchable || trouble.empty();
    if (entry.empty()) notes += " (an empty entry: / for Which, 'directory' above for System)";
    if (!trouble.empty()) notes.append(" (").append(entry).append(": ").append(trouble) += ")";
  }
  return {path + notes, searchable ? "" : "no entry can be searched", advice};
}

}  // namespace gxutil
