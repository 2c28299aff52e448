// States of the machine that have to be made first, and are skipped where that is not possible.

#include <cerrno>
#include <clocale>
#include <cstdlib>
#include <string>

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include "gxclient_util.h"
#include "harness/faults.h"
#include "harness/leakcheck.h"
#include "harness/scopedenv.h"
#include "harness/tempdir.h"

using GXUtils::CheckCreateDir;
using GXUtils::GenerateTempFile;

namespace {

TEST(Machine, SingleByteLocale) {
  const TempDir folder;
  const std::string make = "localedef -f ISO-8859-1 -i de_DE " + folder.Path("latin1");
  const bool made = std::system((make + " >/dev/null 2>&1").c_str()) == 0;
  if (!made) GTEST_SKIP() << "needs localedef and the character maps of the package locales";
  const ScopedEnv path("LOCPATH", folder.Path().c_str());
  const ScopedEnv home("HOME", "/");
  const ScopedEnv user("LOGNAME", "Zo\xEB");
  ASSERT_NE(std::setlocale(LC_ALL, "latin1"), nullptr);
  EXPECT_EQ(GXUtils::Transcode("UTF-8", "", "Zo\xC3\xAB"), "Zo\xEB");
  EXPECT_EQ(GXUtils::Transcode("", "UTF-8", "Zo\xEB"), "Zo\xC3\xAB");
  EXPECT_EQ(GXUtils::ToLower("\xC3\x84\xCE\xA9"), "\xC3\xA4\xCF\x89");
  EXPECT_EQ(GXUtils::calcRunningUser(), "Zo\xC3\xAB");
  const Failing unknown("getpwnam", 1, 0);
  const Failing refused("mkdir", 1, EACCES);
  EXPECT_EQ(GXUtils::calcHomeDir("Zo\xC3\xAB"), "/root");
  EXPECT_EQ(lookedUp, "Zo\xEB");
  std::setlocale(LC_ALL, "C");
}

TEST(Machine, FullAndReadOnlyTmp) {
  if (std::system("unshare -m mount -t tmpfs none /tmp 2>/dev/null") != 0) {
    GTEST_SKIP() << "needs the right to mount";
  }
  EXPECT_TRUE(PassesInChild([] {
    const auto expectRefusal = [](int error) {
      int fd = -2;
      EXPECT_EQ(GenerateTempFile("x", &fd), "");
      EXPECT_EQ(fd, -1);
      EXPECT_FALSE(CheckCreateDir("/tmp/a/b", true));
      EXPECT_EQ(errno, error);
    };
    ASSERT_EQ(unshare(CLONE_NEWNS), 0);
    ASSERT_EQ(mount("none", "/", "", MS_REC | MS_PRIVATE, nullptr), 0);
    ASSERT_EQ(mount("none", "/tmp", "tmpfs", 0, "nr_inodes=2"), 0);
    EXPECT_NE(GenerateTempFile("last", nullptr), "");
    expectRefusal(ENOSPC);
    ASSERT_EQ(mount("none", "/tmp", "", MS_REMOUNT | MS_RDONLY, nullptr), 0);
    expectRefusal(EROFS);
  }));
}

}  // namespace
