#include "gxclient_util.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <utility>

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include "internal/descriptor.h"
#include "support/exportdata.h"
#include "support/gxclient_prefix.h"
#include "support/osx_show_in_file_manager.h"
#include "support/parser.h"

namespace GXUtils {
namespace {

using namespace GXInternal;

constexpr mode_t kDirectoryMode = 0755;
constexpr mode_t kTempFileMode = 0600;
constexpr char kPerUserDirectory[] = ".gannorex";
constexpr char kFallbackHome[] = "/root";
constexpr std::size_t kMaxTempPath = 511;  // a longer template is cut; mkstemp() wants X at its end

bool EnsureDirectory(const std::string& path) {
  return CheckFileExist(path) || mkdir(path.c_str(), kDirectoryMode) == 0;
}

// Makes every missing directory of `path`, which begins with a slash.
bool EnsureEveryDirectory(const std::string& path) {
  std::size_t end = path.find('/', 1);
  for (; end != std::string::npos; end = path.find('/', end + 1)) {
    if (!EnsureDirectory(path.substr(0, end))) return false;
  }
  return EnsureDirectory(path);
}

const char* FirstSetVariable(std::initializer_list<const char*> names) {
  for (const char* name : names) {
    const char* value = std::getenv(name);
    if (value != nullptr) return value;  // an empty one counts
  }
  return nullptr;
}

std::string HomeDirectory(std::string user) {
  const char* home = std::getenv("HOME");
  if (home == nullptr) return {};
  if (std::strcmp(home, "/") != 0) return home;
  const passwd* entry = getpwnam(Transcode("UTF-8", "", std::move(user)).c_str());
  return entry != nullptr ? entry->pw_dir : kFallbackHome;
}

std::string LoginName() {
  const passwd* entry = getpwuid(getuid());
  return entry != nullptr ? std::string(entry->pw_name) : std::string();
}

struct FileCloser {
  void operator()(std::FILE* file) const { (void)std::fclose(file); }
};
using UniqueFile = std::unique_ptr<std::FILE, FileCloser>;

// A value beyond the range of int becomes the nearest end of that range.
int SaturatedInt(std::int64_t value) {
  return static_cast<int>(std::clamp<std::int64_t>(value, INT_MIN, INT_MAX));
}

// Adds up the "bogomips" lines of a processor list; -1 when there is none.
int SumBogoMips(std::FILE* stream) {
  constexpr char kKey[] = "bogomips";
  int sum = 0;
  bool found = false;
  // A longer line counts as several lines of at most 255 bytes.
  char line[256];
  while (std::fgets(line, sizeof line, stream) != nullptr) {
    if (std::strncmp(line, kKey, sizeof kKey - 1) != 0) continue;
    const char* colon = std::strchr(line, ':');
    if (colon == nullptr) continue;
    const int value = SaturatedInt(std::strtol(colon + 1, nullptr, 10));
    sum = SaturatedInt(std::int64_t{sum} + value);
    found = true;
  }
  return found ? sum : -1;
}

}  // namespace

bool CheckCreateDir(std::string path, bool recursive) {
  if (CheckFileExist(path)) return true;
  if (!recursive) return mkdir(path.c_str(), kDirectoryMode) == 0;
  // Every path is taken as absolute: what precedes its first slash is dropped.
  const std::size_t slash = path.find('/');
  return EnsureEveryDirectory(slash == std::string::npos ? "/" + path : path.substr(slash));
}

std::string GenerateTempFile(std::string name, int* fd) {
  std::string path = "/tmp/" + std::move(name) + "XXXXXX";
  path.resize(std::min(path.size(), kMaxTempPath));
  UniqueFd file(mkstemp(path.data()));
  const bool made = file.Get() >= 0;
  if (made) (void)chmod(path.c_str(), kTempFileMode);  // the umask may have left less
  if (fd != nullptr) *fd = file.Release();
  if (!made) return {};
  path.resize(std::strlen(path.c_str()));
  return path;
}

int UnlinkOrTruncate(const char* path) { return unlink(path); }

std::string winGetTempDir() { return {}; }

std::string calcHomeDir(std::string user) {
  std::string home = HomeDirectory(std::move(user));
  (void)CheckCreateDir(home + "/" + kPerUserDirectory, false);
  return home;
}

std::string calcRunningUser() {
  const char* user = FirstSetVariable({"LOGNAME", "USERNAME", "USER"});
  return Transcode("", "UTF-8", user != nullptr ? std::string(user) : LoginName());
}

std::string AddPathPrefix(std::string path) {
  if (!path.empty() && path.front() == '/') return path;
  return gxclient_prefix + "/" + path;
}

int ShowInFileManager(const std::string& path) { return osxShowInFileManager(path); }

int GetBogoMips() {
  const UniqueFile file(std::fopen("/proc/cpuinfo", "r"));
  return file ? SumBogoMips(file.get()) : -1;
}

}  // namespace GXUtils

namespace {

struct AccessMode {
  std::int32_t access;
  bool valid;
};

AccessMode ReadMode(Parser& parser, std::string& word) {
  if (parser.current != ',') return {0, false};
  parser.advance();
  if (parser.parse_comma_escaped_string(word) == 0) return {0, false};
  if (word == "ro") return {1, true};
  if (word == "rw") return {2, true};
  return {0, word == "disabled"};
}

}  // namespace

int parse_nfs_export_option(std::string option, std::vector<Exportdata*>& exports) {
  Parser parser(std::move(option));
  exports.clear();
  bool valid = true;
  std::string path;
  std::string word;
  for (;;) {
    AccessMode mode{0, true};  // of an empty path, which no mode follows
    if (parser.parse_comma_escaped_string(path) != 0) {
      mode = ReadMode(parser, word);
    } else {
      path.clear();  // the parser of a client may leave something in it
    }
    valid = valid && mode.valid;

    auto record = std::make_unique<Exportdata>();
    record->path = path;
    record->access = mode.access;
    exports.push_back(record.get());
    (void)record.release();
    if (parser.current != ',') return valid ? 1 : 0;
    parser.advance();
  }
}
