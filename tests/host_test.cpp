// What gxutil.session cannot show of these functions; fuzz/nfs_fuzz.cpp has the export options.

#include <climits>

#include <pwd.h>

#include "harness/harness.h"

using namespace std::string_literals;

namespace {

TEST(GenerateTempFile, HandsOverItsDescriptor) {
  const LeakCheck leaks;
  int fd = -2;
  for (const std::string& name : {"aXXXXXX\0"s, std::string(500, '/')}) {  // the longest one
    const std::string path = GXUtils::GenerateTempFile(name, &fd);
    EXPECT_EQ(path.size(), name.size() == 500 ? 511U : sizeof "/tmp/aXXXXXX" - 1);
    EXPECT_EQ(write(fd, "x", 1), 1);
    EXPECT_EQ(std::filesystem::file_size(path), 1U);
    close(fd);
    EXPECT_EQ(unlink(path.c_str()), 0);
  }
  for (const std::string& refused : {"a\0b"s, "no/such/directory"s, std::string(501, '/')}) {
    EXPECT_EQ(GXUtils::GenerateTempFile(refused, &fd), "");
    EXPECT_EQ(fd, -1);
  }
}

TEST(PasswordDatabase, IsAskedForARootDirectoryAndForAMissingName) {
  const auto home = [] { return GXUtils::calcHomeDir("aén"); };
  const auto user = [] { return GXUtils::calcRunningUser(); };
  // A conversion that cannot be made tells its direction, whatever the locale.
  const std::string unable = "2 iconv: Unable to convert from ";
  const std::string fallback = "\n2 iconv: Using ASCII truncation fallback\n";
  const std::string ascii = unable + "UTF-8 to " + fallback + "an";
  const std::string id = unable + " to UTF-8" + fallback + std::to_string(getuid());
  char known[] = "known";
  const struct {
    std::function<std::string()> function;
    const char* variable;  // HOME
    char* found;           // in the only entry; null: there is none
    std::string result, lookedUp;
  } cases[] = {
      {home, "//", known, "//", ""},        {home, "/", known, known, ascii},
      {home, "/", nullptr, "/root", ascii}, {user, "/", known, known, id},
      {user, "/", nullptr, "", id},
  };
  for (const auto& c : cases) {
    EXPECT_TRUE(PassesInChild([&] {
      passwd entry{};
      entry.pw_name = entry.pw_dir = c.found;
      fakePasswd = c.found != nullptr ? &entry : nullptr;
      const Failing byName("getpwnam", 1, 0), byId("getpwuid", 1, 0), refused("mkdir", 1, EACCES);
      const Failing ignoring("iconv_open", 1, EINVAL), plain("iconv_open", 2, EINVAL);
      for (const char* name : {"LOGNAME", "USERNAME", "USER"}) (void)unsetenv(name);
      (void)setenv("HOME", c.variable, 1);
      (void)!seteuid(1001);
      EXPECT_EQ(c.function(), c.result);
      EXPECT_EQ(logged + lookedUp, c.lookedUp);
      (void)!seteuid(getuid());  // which may write what a coverage build has counted
    })) << c.result
        << ", " << c.lookedUp;
  }
}

TEST(GetBogoMips, AddsUpTheProcessorsLines) {
  const struct {
    const char* what;
    std::string text;
    int sum;
  } cases[] = {
      {"no such line", "bogomips 1\nBogoMIPS\t: 38.00\n bogomips: 1\nbogomip: 1\n", -1},
      {"two processors", "bogomips\t: 5986.12\nx\nbogomips : 05986.99\n", 11972},
      {"the first colon", "bogomips:1:7\nbogomips 2:-3", -2},
      {"no number", "bogomips without\nbogomips: none", 0},
      {"too high", "bogomips: 99999999999999999999\nbogomips: 5", INT_MAX},
      {"too low", "bogomips: -9999999999\nbogomips: -1", INT_MIN},
      {"a piece of 255 bytes is a line", std::string(255, 'x') + "bogomips:4\n", 4},
      {"its end is one", "bogomips" + std::string(247, ' ') + ":5\n", -1},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    const LeakCheck leaks;
    fakeFile = fmemopen(const_cast<char*>(c.text.data()), c.text.size(), "r");
    const Failing given("fopen", 1, 0);
    EXPECT_EQ(GXUtils::GetBogoMips(), c.sum);
  }
  fakeFile = nullptr;
  const Failing absent("fopen", 1, ENOENT);
  EXPECT_EQ(GXUtils::GetBogoMips(), -1);
}

}  // namespace
