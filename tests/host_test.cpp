// Files, users and the host.

#include <climits>
#include <fstream>

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include "harness/run.h"
#include "harness/temp_dir.h"
#include "support/exportdata.h"
#include "support/gxclient_prefix.h"

using namespace GXUtils;
using namespace std::string_literals;

namespace {

int Mode(const std::string& path) {
  return static_cast<int>(std::filesystem::status(path).permissions());
}

TEST(CheckCreateDir, MakesTheMissingDirectoriesAboveIfRecursive) {
  const TempDir top;
  umask(022);
  EXPECT_TRUE(CheckCreateDir(top.path + "/a//b/", true));
  EXPECT_EQ(Mode(top.path + "/a/b"), 0755);
  EXPECT_TRUE(
      CheckCreateDir("x" + top.path + "/c", true));  // what precedes the first slash is dropped
  EXPECT_TRUE(CheckFileExist(top.path + "/c"));
  EXPECT_TRUE(CheckCreateDir(top.path + "/d", false));
  EXPECT_EQ(Mode(top.path + "/d"), 0755);
  EXPECT_FALSE(CheckCreateDir(top.path + "/e/f", false));
  EXPECT_EQ(errno, ENOENT);
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
  EXPECT_TRUE(CheckFileExist(top.path + "/a"));  // stays after the failure
}

TEST(GenerateTempFile, MakesAFileForItsOwner) {
  int fd = kUnwritten;
  umask(0777);
  const std::string path = GenerateTempFile("abc", &fd);
  umask(022);
  EXPECT_EQ(path.substr(0, 8), "/tmp/abc");
  EXPECT_EQ(path.size(), 14U);  // and six characters
  EXPECT_EQ(Mode(path), 0600);
  EXPECT_EQ(write(fd, "text", 4), 4);
  EXPECT_EQ(std::filesystem::file_size(path), 4U);
  EXPECT_EQ(close(fd), 0);
  EXPECT_EQ(unlink(path.c_str()), 0);
}

TEST(GenerateTempFile, TakesNamesOfUpTo500BytesOrToANulByte) {
  // Slashes, because a single name of 500 bytes is too long for a file system.
  const std::string path = GenerateTempFile(std::string(500, '/'), nullptr);
  EXPECT_EQ(unlink(path.c_str()), 0);
  const std::string cut = GenerateTempFile("aXXXXXX\0b"s, nullptr);
  EXPECT_EQ(cut.size(), 12U);
  EXPECT_EQ(unlink(cut.c_str()), 0);
  for (const std::string& name : {std::string(501, '/'), "a\0b"s, "no/such/directory"s}) {
    int fd = kUnwritten;
    EXPECT_EQ(GenerateTempFile(name, &fd), "");
    EXPECT_EQ(fd, -1);
  }
}

TEST(UnlinkOrTruncate, RemovesAFile) {
  const std::string file = GenerateTempFile("abc", nullptr);
  EXPECT_EQ(UnlinkOrTruncate(file.c_str()), 0);
  EXPECT_EQ(UnlinkOrTruncate(file.c_str()), -1);
  EXPECT_EQ(errno, ENOENT);
}

TEST(winGetTempDir, IsEmpty) { EXPECT_EQ(winGetTempDir(), ""); }

void Set(const char* name, const char* value) { (void)setenv(name, value, 1); }

TEST(calcHomeDir, IsHomeAsItIsAndMakesItsDirectory) {
  const TempDir top;
  umask(022);
  Set("HOME", top.path.c_str());
  EXPECT_EQ(calcHomeDir("ann"), top.path);
  EXPECT_EQ(Mode(top.path + "/.gannorex"), 0755);
  Set("HOME", "/no/such/");
  EXPECT_EQ(calcHomeDir("ann"), "/no/such/");
  unsetenv("HOME");
  const Armed refused({.call = Call::kMkdir, .required = false});  // "/.gannorex" may exist
  EXPECT_EQ(calcHomeDir("ann"), "");
}

TEST(calcHomeDir, AsksThePasswordDatabaseIfHomeIsTheRootDirectory) {
  TempDir top;
  passwd entry = {};
  entry.pw_dir = top.path.data();
  Set("HOME", "/");
  {
    const Armed known({.call = Call::kGetpwnam, .answer = &entry});
    const Armed refused({.call = Call::kIconvOpen, .nth = kEachTime});
    EXPECT_EQ(calcHomeDir("aén"), top.path);
  }
  EXPECT_EQ(lookedUp, "an");  // converted for the locale: ASCII without iconv
  const Armed unknown({.call = Call::kGetpwnam});
  const Armed refused({.call = Call::kMkdir, .required = false});  // "/root/.gannorex" may exist
  EXPECT_EQ(calcHomeDir("ann"), "/root");
}

TEST(calcRunningUser, IsTheFirstVariableThatIsSet) {
  Set("LOGNAME", "ann");
  Set("USERNAME", "carl");
  Set("USER", "bob");
  EXPECT_EQ(calcRunningUser(), "ann");
  unsetenv("LOGNAME");
  EXPECT_EQ(calcRunningUser(), "carl");
  unsetenv("USERNAME");
  EXPECT_EQ(calcRunningUser(), "bob");
  Set("LOGNAME", "");
  EXPECT_EQ(calcRunningUser(), "");
  Set("LOGNAME", "aén");  // converted from the locale: ASCII without iconv
  const Armed refused({.call = Call::kIconvOpen, .nth = kEachTime});
  EXPECT_EQ(calcRunningUser(), "an");
}

TEST(calcRunningUser, AsksThePasswordDatabaseWithoutAVariable) {
  for (const char* name : {"LOGNAME", "USERNAME", "USER"}) unsetenv(name);
  char name[] = "ann";
  passwd entry = {};
  entry.pw_name = name;
  (void)!seteuid(1001);  // if permitted: the real user counts
  {
    const Armed known({.call = Call::kGetpwuid, .answer = &entry});
    EXPECT_EQ(calcRunningUser(), "ann");
  }
  EXPECT_EQ(lookedUp, std::to_string(getuid()));
  (void)!seteuid(getuid());
  const Armed unknown({.call = Call::kGetpwuid});
  EXPECT_EQ(calcRunningUser(), "");
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
  EXPECT_EQ(BogoMips("bogomips\t: 5986.12\nx\nbogomips : 5986.99\n"), 11972);  // integers
  EXPECT_EQ(BogoMips("bogomips: none"), 0);
  EXPECT_EQ(BogoMips("bogomips: 99999999999999999999\nbogomips: 5"), INT_MAX);
  EXPECT_EQ(BogoMips("bogomips: -9999999999\nbogomips: -1"), INT_MIN);
  const std::string piece(255, 'x');  // counts as a line
  EXPECT_EQ(BogoMips(piece + "bogomips:4\n"), 4);
}

TEST(GetBogoMips, IsMinusOneWithoutAProcessor) {
  EXPECT_EQ(BogoMips("BogoMIPS: 1\n bogomips: 1\nbogomip: 1\nbogomips 1\n"), -1);
  EXPECT_EQ(BogoMips("bogomips" + std::string(247, ' ') + ":5\n"), -1);  // in the next piece
  {
    const Armed unreadable({.call = Call::kFopen, .answer = std::fopen("/", "r")});
    EXPECT_EQ(GetBogoMips(), -1);
  }
  const Armed absent({.call = Call::kFopen});
  EXPECT_EQ(GetBogoMips(), -1);
}

// Owns what parse_nfs_export_option() makes.
struct Records : std::vector<Exportdata*> {
  ~Records() {
    for (const Exportdata* record : *this) delete record;
  }
};

// The result, and the path and access (0 none, 1 ro, 2 rw) of each record.
using Exports = std::pair<int, std::vector<std::pair<std::string, int>>>;

Exports Parse(const std::string& option) {
  Records records;
  records.push_back(nullptr);  // the call empties the list
  Exports exports = {parse_nfs_export_option(option, records), {}};
  for (const Exportdata* record : records) {
    exports.second.emplace_back(record->path, record->access);
  }
  return exports;
}

TEST(parse_nfs_export_option, MakesARecordForEachPair) {
  EXPECT_EQ(Parse("/home/ann,rw,/usb,ro"), Exports(1, {{"/home/ann", 2}, {"/usb", 1}}));
  EXPECT_EQ(Parse("/srv/x,disabled"), Exports(1, {{"/srv/x", 0}}));
  EXPECT_EQ(Parse(R"(/a\,b\\cc\d\\,ro)"), Exports(1, {{R"(/a,b\cc\d\)", 1}}));
  EXPECT_EQ(Parse("\xFF\0x,ro"s), Exports(1, {{"\xFF\0x"s, 1}}));
  EXPECT_EQ(Parse("/a,ro,\xFF"),
            Exports(1, {{"/a", 1}, {"", 0}}));  // alone it is taken for the end
  EXPECT_EQ(Parse(",/a,ro,"), Exports(1, {{"", 0}, {"/a", 1}, {"", 0}}));
}

TEST(parse_nfs_export_option, ReturnsZeroForAnInvalidPair) {
  EXPECT_EQ(Parse("/srv/x,RO"), Exports(0, {{"/srv/x", 0}}));
  EXPECT_EQ(Parse("/srv/x"), Exports(0, {{"/srv/x", 0}}));
  EXPECT_EQ(Parse("/a,,/b,rw"), Exports(0, {{"/a", 0}, {"/b", 2}}));
}

TEST(Host, LeavesNothingBehind) {
  const TempDir top;
  const std::string name = "../" + top.path + "/" + std::string(100, 'x');  // a file in top
  LeavesNothingBehind([&] { (void)unlink(GenerateTempFile(name, nullptr).c_str()); });
  EXPECT_TRUE(std::filesystem::is_empty(top.path));
  LeavesNothingBehind([] { GetBogoMips(); });
  LeavesNothingBehind([] {
    Records records;
    parse_nfs_export_option("/" + std::string(100, 'x') + ",ro,/b,rw,/c", records);
  });
}

}  // namespace
