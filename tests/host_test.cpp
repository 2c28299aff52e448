// Files, users and the host. Each test runs in its own process, whose environment it may change.

#include <climits>
#include <fstream>

#include <pwd.h>
#include <sys/stat.h>

#include "harness/run.h"
#include "harness/temp_dir.h"
#include "support/exportdata.h"
#include "support/gxclient_prefix.h"

using namespace GXUtils;
using namespace std::string_literals;

int Mode(const std::string& path) {
  return static_cast<int>(std::filesystem::status(path).permissions());
}

TEST(CheckCreateDir, MakesTheMissingDirectories) {
  const TempDir top;
  umask(0);
  EXPECT_TRUE(CheckCreateDir(top.path + "/a//b/", true));
  EXPECT_EQ(Mode(top.path + "/a/b"), 0755);
  EXPECT_TRUE(CheckCreateDir(top.path + "/c", false));
  EXPECT_EQ(Mode(top.path + "/c"), 0755);
  EXPECT_FALSE(CheckCreateDir(top.path + "/d/e", false));
  EXPECT_EQ(errno, ENOENT);
  // What precedes the first slash is dropped.
  EXPECT_TRUE(CheckCreateDir("x" + top.path + "/f", true));
  EXPECT_TRUE(CheckFileExist(top.path + "/f"));
  // With its parents, an empty path is the root directory.
  EXPECT_TRUE(CheckCreateDir("", true));
  EXPECT_FALSE(CheckCreateDir("", false));
}

TEST(CheckCreateDir, TakesAnyFileForTheDirectory) {
  const TempDir top;
  std::ofstream(top.path + "/file").close();
  EXPECT_TRUE(CheckCreateDir(top.path + "/file", true));
  EXPECT_FALSE(CheckCreateDir(top.path + "/file/x", true));
  EXPECT_EQ(errno, ENOTDIR);
  std::filesystem::create_symlink("/no/such", top.path + "/link");
  EXPECT_FALSE(CheckCreateDir(top.path + "/a/../link", true));
  EXPECT_EQ(errno, EEXIST);
  // The directory that was made before the failure stays.
  EXPECT_TRUE(CheckFileExist(top.path + "/a"));
}

TEST(GenerateTempFile, MakesAFileForItsOwner) {
  int fd = kUnwritten;
  // The mode does not depend on the umask.
  umask(0777);
  const std::string path = GenerateTempFile("abc", &fd);
  EXPECT_EQ(path.substr(0, 8), "/tmp/abc");
  EXPECT_EQ(path.size(), 14U);
  EXPECT_EQ(Mode(path), 0600);
  EXPECT_EQ(write(fd, "text", 4), 4);
  (void)close(fd);
  EXPECT_EQ(unlink(path.c_str()), 0);
}

TEST(GenerateTempFile, TakesNamesOfUpTo500Bytes) {
  // Slashes, because a file name has at most 255 bytes.
  const std::string longest(500, '/');
  EXPECT_EQ(unlink(GenerateTempFile(longest, nullptr).c_str()), 0);
  // A NUL byte cuts off the X's that the call appends.
  for (const std::string& name : {longest + "/", "a\0b"s, "no/such/directory"s}) {
    int fd = kUnwritten;
    EXPECT_EQ(GenerateTempFile(name, &fd), "");
    EXPECT_EQ(fd, -1);
  }
  EXPECT_EQ(errno, ENOENT);
}

TEST(UnlinkOrTruncate, RemovesAFile) {
  const std::string file = GenerateTempFile("abc", nullptr);
  EXPECT_EQ(UnlinkOrTruncate(file.c_str()), 0);
  EXPECT_EQ(UnlinkOrTruncate(file.c_str()), -1);
  EXPECT_EQ(errno, ENOENT);
}

TEST(winGetTempDir, IsEmpty) { EXPECT_EQ(winGetTempDir(), ""); }

void Set(const char* name, const char* value) { (void)setenv(name, value, 1); }

TEST(calcHomeDir, IsHomeAndMakesADirectoryInIt) {
  const TempDir top;
  Set("HOME", top.path.c_str());
  EXPECT_EQ(calcHomeDir("ann"), top.path);
  EXPECT_TRUE(std::filesystem::is_directory(top.path + "/.gannorex"));
  Set("HOME", "/no/such/");
  EXPECT_EQ(calcHomeDir("ann"), "/no/such/");
}

TEST(calcHomeDir, AsksThePasswordDatabaseIfHomeIsTheRootDirectory) {
  const passwd* entry = getpwnam("daemon");
  ASSERT_NE(entry, nullptr);
  const std::string home = entry->pw_dir;
  // Without permission, because the call would make a directory in these homes.
  (void)!seteuid(1001);
  Set("HOME", "/");
  // The name is converted for the locale "C", which drops the é.
  EXPECT_EQ(calcHomeDir("daeémon"), home);
  EXPECT_EQ(calcHomeDir("no-such-user"), "/root");
  unsetenv("HOME");
  EXPECT_EQ(calcHomeDir("daemon"), "");
  (void)!seteuid(getuid());
}

TEST(calcRunningUser, IsTheFirstVariableThatIsSet) {
  const auto names = {"LOGNAME", "USERNAME", "USER"};
  for (const char* name : names) Set(name, name);
  for (const char* name : names) {
    EXPECT_EQ(calcRunningUser(), name);
    unsetenv(name);
  }
  // An empty variable counts.
  Set("LOGNAME", "");
  Set("USER", "bob");
  EXPECT_EQ(calcRunningUser(), "");
  // The name is converted from the locale "C", which drops the é.
  Set("LOGNAME", "aén");
  EXPECT_EQ(calcRunningUser(), "an");
}

TEST(calcRunningUser, AsksThePasswordDatabaseWithoutAVariable) {
  for (const char* name : {"LOGNAME", "USERNAME", "USER"}) unsetenv(name);
  const passwd* entry = getpwuid(getuid());
  const std::string name = entry != nullptr ? entry->pw_name : "";
  PassesInChild([&] {
    // The real user counts. Another one needs permission, and is not in the database.
    (void)!seteuid(61234);
    EXPECT_EQ(calcRunningUser(), name);
    const bool changed = setresuid(61234, 0, 0) == 0;
    EXPECT_EQ(calcRunningUser(), changed ? "" : name);
  });
}

TEST(AddPathPrefix, PutsThePrefixBeforeARelativePath) {
  gxclient_prefix = "/opt/app";
  EXPECT_EQ(AddPathPrefix("lib/x"), "/opt/app/lib/x");
  EXPECT_EQ(AddPathPrefix(""), "/opt/app/");
  EXPECT_EQ(AddPathPrefix("/etc/x"), "/etc/x");
}

// Reads the text as the list of processors.
int BogoMips(std::string list) {
  std::FILE* file = fmemopen(list.data(), list.size(), "r");
  const Armed opened({.call = Call::kFopen, .answer = file});
  return GetBogoMips();
}

TEST(GetBogoMips, AddsUpTheProcessors) {
  EXPECT_EQ(BogoMips("bogomips\t: 5986.12\nx\nbogomips : 5986.99\n"), 11972);
  EXPECT_EQ(BogoMips("bogomips: none"), 0);
  EXPECT_EQ(BogoMips("bogomips: 99999999999999999999\nbogomips: 5"), INT_MAX);
  EXPECT_EQ(BogoMips("bogomips: -9999999999\nbogomips: -1"), INT_MIN);
  // A piece of 255 bytes counts as a line.
  EXPECT_EQ(BogoMips(std::string(255, 'x') + "bogomips:4\n"), 4);
  EXPECT_EQ(BogoMips("bogomips" + std::string(247, ' ') + ":5\n"), -1);
  EXPECT_EQ(BogoMips("BogoMIPS: 1\n bogomips: 1\nbogomip: 1\nbogomips 1\n"), -1);
  const Armed absent({.call = Call::kFopen});
  EXPECT_EQ(GetBogoMips(), -1);
}

// Owns what parse_nfs_export_option() makes.
struct Exports : std::vector<Exportdata*> {
  ~Exports() {
    for (const Exportdata* each : *this) delete each;
  }
};

// The path and the access (0 none, 1 ro, 2 rw) of each record.
using Records = std::vector<std::pair<std::string, int>>;

Records Parse(const std::string& option, int expected = 1) {
  Exports exports;
  exports.push_back(nullptr);  // the call empties the list
  EXPECT_EQ(parse_nfs_export_option(option, exports), expected);
  Records records;
  for (const Exportdata* each : exports) records.emplace_back(each->path, each->access);
  return records;
}

TEST(parse_nfs_export_option, MakesARecordForEachPair) {
  EXPECT_EQ(Parse("/home/ann,rw,/usb,ro"), (Records{{"/home/ann", 2}, {"/usb", 1}}));
  EXPECT_EQ(Parse("/srv/x,disabled"), (Records{{"/srv/x", 0}}));
  EXPECT_EQ(Parse(R"(/a\,b\\cc\d\\,ro)"), (Records{{R"(/a,b\cc\d\)", 1}}));
  EXPECT_EQ(Parse(",/a,ro,"), (Records{{"", 0}, {"/a", 1}, {"", 0}}));
  // A last path of the byte 0xFF alone counts as empty.
  EXPECT_EQ(Parse("\xFFy\0z,ro,\xFF"s), (Records{{"\xFFy\0z"s, 1}, {"", 0}}));
  // The result is 0 for an invalid pair.
  EXPECT_EQ(Parse("/srv/x,RO", 0), (Records{{"/srv/x", 0}}));
  EXPECT_EQ(Parse("/srv/x", 0), (Records{{"/srv/x", 0}}));
  EXPECT_EQ(Parse("/a,,/b,rw", 0), (Records{{"/a", 0}, {"/b", 2}}));
}

TEST(Host, LeavesNothingBehind) {
  const TempDir top;
  // A file that is left shows in this directory.
  const std::string name = "../" + top.path + "/" + std::string(100, 'x');
  LeavesNothingBehind([&] { (void)unlink(GenerateTempFile(name, nullptr).c_str()); });
  EXPECT_TRUE(std::filesystem::is_empty(top.path));
  LeavesNothingBehind([] { GetBogoMips(); });
  LeavesNothingBehind([] {
    Exports exports;
    parse_nfs_export_option("/" + std::string(100, 'x') + ",ro,/b,rw,/c", exports);
  });
}
