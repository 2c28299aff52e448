#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include "gxclient_util.h"
#include "harness/faults.h"
#include "harness/leakcheck.h"
#include "harness/scopedenv.h"
#include "harness/tempdir.h"
#include "support/exportdata.h"

using namespace std::string_literals;
using GXUtils::GenerateTempFile;

namespace {

mode_t Mode(const std::string& path) {
  struct stat info {};
  return stat(path.c_str(), &info) == 0 ? info.st_mode & 07777 : 0;
}

TEST(CheckCreateDir, MakesWhatIsMissing) {
  const struct {
    const char* path;
    bool recursive;
    bool result;
    const char* made = nullptr;     // exists afterwards
    const char* missing = nullptr;  // does not
  } cases[] = {
      {"/file", false, true},
      {"/file/sub", true, false, nullptr, "/file/sub"},
      {"/a/b", false, false, nullptr, "/a"},
      {"/a/b", true, true, "/a/b"},
      {"/one", false, true, "/one"},
      {"/n/", true, true, "/n"},
      {"/d//e///f", true, true, "/d/e/f"},
      {"/a/b/new/file/../x", true, true, "/a/b/new/x"},
  };
  const TempDir root;
  (void)fclose(fopen(root.Path("file").c_str(), "w"));
  EXPECT_TRUE(PassesInChild([&] {
    umask(020);
    for (const auto& c : cases) {
      SCOPED_TRACE(c.path);
      EXPECT_EQ(GXUtils::CheckCreateDir(root.Path() + c.path, c.recursive), c.result);
      EXPECT_TRUE(c.made == nullptr || Mode(root.Path() + c.made) == 0755);
      EXPECT_TRUE(c.missing == nullptr || Mode(root.Path() + c.missing) == 0);
    }
  }));
  // The paths below never reach a mkdir() that succeeds.
  Failing refused("mkdir", 1, EROFS);
  EXPECT_TRUE(GXUtils::CheckCreateDir("/", false) && GXUtils::CheckCreateDir("", true));
  EXPECT_FALSE(refused.Happened());
  EXPECT_FALSE(GXUtils::CheckCreateDir("ignored/gxclient-test/x", true));
  EXPECT_EQ(errno, EROFS);
  EXPECT_TRUE(refused.Happened());
  EXPECT_FALSE(GXUtils::CheckCreateDir("", false));
  EXPECT_TRUE(GXUtils::CheckCreateDir("tmp", true));  // relative: hangs on the root
}

TEST(GenerateTempFile, CreatesAPrivateFile) {
  const LeakCheck leaks;
  const TempDir folder;
  const std::string below = folder.Path().substr(sizeof "/tmp/" - 1) + "/";
  const mode_t before = umask(0777);  // takes every bit that is not put back afterwards
  for (const bool wanted : {true, false}) {
    int fd = -2;
    const std::string path = GenerateTempFile(below + "abc", wanted ? &fd : nullptr);
    EXPECT_EQ(path.substr(0, path.size() - 6), folder.Path("abc"));
    EXPECT_EQ(Mode(path), 0600U);
    if (wanted) {
      EXPECT_EQ(write(fd, "x", 1), 1);
      EXPECT_EQ(std::filesystem::file_size(path), 1U);
      close(fd);
    }
    EXPECT_EQ(GXUtils::UnlinkOrTruncate(path.c_str()), 0);
  }
  umask(before);
  // The longest name that leaves room for the six characters.
  const std::string two = std::string(180, 'd') + "/" + std::string(180, 'd');
  std::filesystem::create_directories(folder.Path(two));
  const std::string deep = below + two + "/";
  const std::string longest = deep + std::string(500 - deep.size(), 'n');
  const std::string cases[] = {longest + "n", "no/such/folder", "a\0b"s, std::string(5000, '/')};
  for (const std::string& name : cases) {
    int fd = -2;
    EXPECT_EQ(GenerateTempFile(name, &fd), "");
    EXPECT_EQ(fd, -1);
  }
  EXPECT_EQ(GenerateTempFile(longest, nullptr).size(), 511U);
  EXPECT_EQ(GXUtils::UnlinkOrTruncate(folder.Path("none").c_str()), -1);
  EXPECT_EQ(errno, ENOENT);
  EXPECT_EQ(GXUtils::winGetTempDir(), "");
}

TEST(CalcHomeDir, TakesTheEnvironmentOrThePasswordDatabase) {
  const TempDir folder;
  const std::string home = folder.Path();
  const struct {
    const char* variable;
    std::string result;
    std::string perUser;
  } cases[] = {
      {home.c_str(), home, home + "/.gannorex"},
      {nullptr, "", "/.gannorex"},
      {"", "", "/.gannorex"},
      {"/dev/null/x", "/dev/null/x", "/dev/null/x/.gannorex"},
      {"/", "/root", "/root/.gannorex"},
  };
  for (const auto& c : cases) {
    const ScopedEnv environment("HOME", c.variable);
    Failing refused("mkdir", 1, EACCES);
    Failing unknown("getpwnam", 1, 0);
    EXPECT_EQ(GXUtils::calcHomeDir("ann"), c.result);
    EXPECT_TRUE(refused.Happened() || Mode(c.perUser) != 0) << c.perUser;
  }
  {
    const std::string missing = folder.Path("missing");
    const ScopedEnv environment("HOME", missing.c_str());
    EXPECT_EQ(GXUtils::calcHomeDir(""), missing);
    EXPECT_FALSE(GXUtils::CheckFileExist(missing));
  }
  const ScopedEnv slash("HOME", "/");
  std::string directory = home + "/";
  passwd entry{};
  entry.pw_dir = directory.data();
  fakePasswd = &entry;
  Failing known("getpwnam", 1, 0);
  EXPECT_EQ(GXUtils::calcHomeDir("a\xC3\xA9n"), home + "/");
  EXPECT_EQ(lookedUp, "an");  // in the locale's encoding, ASCII here
  fakePasswd = nullptr;
  EXPECT_EQ(Mode(home + "/.gannorex"), 0755U);
}

TEST(CalcRunningUser, TakesTheFirstVariableThatIsSet) {
  std::string login = "login";
  passwd entry{};
  entry.pw_name = login.data();
  fakePasswd = &entry;
  const struct {
    const char* variables[3];
    const char* user;
  } cases[] = {
      {{"a\xC3\xA9n", nullptr, "bob"}, "an"}, {{nullptr, "carl", "bob"}, "carl"},
      {{nullptr, nullptr, "bob"}, "bob"},     {{"", nullptr, "bob"}, ""},
      {{nullptr, nullptr, nullptr}, "login"},
  };
  for (const auto& c : cases) {
    const ScopedEnv logname("LOGNAME", c.variables[0]);
    const ScopedEnv username("USERNAME", c.variables[1]);
    const ScopedEnv user("USER", c.variables[2]);
    Failing known("getpwuid", 1, 0);
    EXPECT_EQ(GXUtils::calcRunningUser(), c.user);
  }
  fakePasswd = nullptr;
}

TEST(GetBogoMips, AddsUpTheProcessorsLines) {
  const std::pair<std::string, int> cases[] = {
      {"bogomips\t: 5986.12\nx\nbogomips : 5986.99\n", 11972},
      {"", -1},
      {"BogoMIPS\t: 38.00\n bogomips: 1\n", -1},
      {"bogomips without\nbogomips: none", 0},
      {"bogomips:1:7\nbogomips 2:-3", -2},
      {"bogomips: 99999999999999999999\nbogomips: 5\n", INT_MAX},
      {"bogomips: -9999999999\nbogomips: -1\n", INT_MIN},
      {std::string(255, 'x') + "bogomips:4\n" + "bogomips" + std::string(247, ' ') + ":5\n", 4},
  };
  for (const auto& [text, figure] : cases) {
    SCOPED_TRACE(text.substr(0, 60));
    const LeakCheck leaks;
    fakeFile =
        text.empty() ? std::tmpfile() : fmemopen(const_cast<char*>(text.data()), text.size(), "r");
    Failing given("fopen", 1, 0);
    EXPECT_EQ(GXUtils::GetBogoMips(), figure);
  }
  fakeFile = nullptr;
  Failing absent("fopen", 1, ENOENT);
  EXPECT_EQ(GXUtils::GetBogoMips(), -1);
}

// The table stands in gxutil.session.
TEST(NfsExportOption, FillsTheVectorAfresh) {
  Exportdata old;
  std::vector<Exportdata*> exports = {&old};  // dropped, not deleted
  EXPECT_EQ(parse_nfs_export_option("/a\0\xC3\xFE,rw"s, exports), 1);
  ASSERT_EQ(exports.size(), 1U);
  const std::unique_ptr<Exportdata> record(exports[0]);
  EXPECT_EQ(record->path, "/a\0\xC3\xFE"s);
  EXPECT_EQ(record->access, 2);
}

}  // namespace
