#include <cerrno>
#include <cstdio>
#include <string>
#include <tuple>

#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include "gxclient_util.h"
#include "harness/faults.h"
#include "harness/leakcheck.h"
#include "harness/scopedenv.h"
#include "harness/tempdir.h"

using namespace std::string_literals;

// What a shell can show of these functions stands in gxutil.session.
namespace {

TEST(GenerateTempFile, HandsOverItsDescriptor) {
  const LeakCheck leaks;
  const TempDir folder;
  const std::string name = folder.Path("abc").substr(sizeof "/tmp/" - 1);
  int fd = -2;
  const std::string path = GXUtils::GenerateTempFile(name, &fd);
  EXPECT_EQ(path.substr(0, path.size() - 6), folder.Path("abc"));
  EXPECT_EQ(write(fd, "x", 1), 1);
  EXPECT_EQ(std::filesystem::file_size(path), 1U);
  close(fd);
  EXPECT_EQ(GXUtils::GenerateTempFile(name + "XXXXXX\0"s, nullptr).size(), path.size());
  for (const std::string& refused : {name + "\0b"s, "no/such/folder"s, std::string(5000, '/')}) {
    EXPECT_EQ(GXUtils::GenerateTempFile(refused, &fd), "");
    EXPECT_EQ(fd, -1);
  }
}

TEST(CalcHomeDir, LooksUpARootDirectoryOnly) {
  const TempDir folder;
  std::string directory = folder.Path();
  passwd entry{};
  entry.pw_dir = directory.data();
  const std::tuple<const char*, passwd*, std::string> cases[] = {{nullptr, &entry, ""},
                                                                 {"", &entry, ""},
                                                                 {"//", &entry, "//"},
                                                                 {"/", nullptr, "/root"},
                                                                 {"/", &entry, directory}};
  for (const auto& [variable, found, home] : cases) {
    const ScopedEnv environment("HOME", variable);
    const Failing known("getpwnam", 1, 0);
    const Failing refused("mkdir", 1, EACCES);
    fakePasswd = found;
    EXPECT_EQ(GXUtils::calcHomeDir("aén"), home);
    EXPECT_TRUE(refused.Happened() || GXUtils::CheckFileExist(home + "/.gannorex"));
  }
  EXPECT_EQ(lookedUp, "an");  // in the locale's encoding, ASCII here
}

TEST(CalcRunningUser, TakesTheNameOfTheUserId) {
  std::string login = "login";
  passwd entry{};
  entry.pw_name = login.data();
  for (const char* name : {"LOGNAME", "USERNAME", "USER"}) (void)unsetenv(name);
  for (passwd* found : {&entry, static_cast<passwd*>(nullptr)}) {
    const Failing known("getpwuid", 1, 0);
    fakePasswd = found;
    EXPECT_EQ(GXUtils::calcRunningUser(), found != nullptr ? login : "");
  }
}

// Each file of tests/cpuinfo has the sum of its lines in its name.
TEST(GetBogoMips, AddsUpTheProcessorsLines) {
  int files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(CPUINFO)) {
    const LeakCheck leaks;
    const std::string name = entry.path().filename();
    fakeFile = std::fopen(entry.path().c_str(), "r");
    const Failing given("fopen", 1, 0);
    EXPECT_EQ(GXUtils::GetBogoMips(), std::stoi(name.substr(name.find('=') + 1))) << name;
    ++files;
  }
  EXPECT_EQ(files, 10);
  fakeFile = nullptr;
  const Failing absent("fopen", 1, ENOENT);
  EXPECT_EQ(GXUtils::GetBogoMips(), -1);
}

}  // namespace
