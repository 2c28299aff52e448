#include "harness/leakcheck.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <set>

#include <dirent.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/child.h"

namespace {

// A flag that the C library adds to every action it sets.
constexpr int kRestorer = 0x04000000;

}  // namespace

std::string OpenDescriptors() {
  std::set<int> descriptors;
  DIR* directory = opendir("/proc/self/fd");
  while (const dirent* entry = readdir(directory)) descriptors.insert(std::atoi(entry->d_name));
  closedir(directory);
  std::string all;
  for (const int fd : descriptors) {
    struct stat info {};
    if (fstat(fd, &info) != 0) continue;  // the directory's own, or "." and ".."
    all += std::to_string(fd) + " on " + std::to_string(info.st_dev) + ":" +
           std::to_string(info.st_ino) + " flags " + std::to_string(fcntl(fd, F_GETFD)) + "\n";
  }
  return all;
}

LeakCheck::LeakCheck() : descriptors_(OpenDescriptors()) {
  (void)sigaction(SIGCHLD, nullptr, &sigchld_);
}

LeakCheck::~LeakCheck() {
  EXPECT_EQ(OpenDescriptors(), descriptors_);
  EXPECT_TRUE(waitpid(-1, nullptr, WNOHANG) < 0 && errno == ECHILD) << "a child is left";
  struct sigaction now {};
  (void)sigaction(SIGCHLD, nullptr, &now);
  EXPECT_EQ(now.sa_handler, sigchld_.sa_handler);
  EXPECT_EQ(now.sa_flags & ~kRestorer, sigchld_.sa_flags & ~kRestorer);
#ifndef __SANITIZE_THREAD__  // which keeps a mask of its own
  for (int signal = 1; signal < NSIG; ++signal) {
    EXPECT_EQ(sigismember(&now.sa_mask, signal), sigismember(&sigchld_.sa_mask, signal));
  }
#endif
}

bool PassesInChild(const std::function<void()>& body) {
  std::fflush(nullptr);
  const pid_t pid = fork();
  if (pid == 0) {
    body();
    std::fflush(nullptr);
    GXSupport::LeaveChild(testing::Test::HasFailure() ? 1 : 0);
  }
  int status = -1;
  while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
  }
  return status == 0;
}
