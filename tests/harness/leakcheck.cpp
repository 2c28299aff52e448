#include "harness/leakcheck.h"

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <filesystem>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "internal/child.h"

std::string ProcessState() {
  std::string state;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    const std::string fd = entry.path().filename();
    state += fd + " on " + std::filesystem::read_symlink(entry).string() + " flags " +
             std::to_string(fcntl(std::stoi(fd), F_GETFD)) + "\n";
  }
  constexpr int kRestorer = 0x04000000;  // a flag that the C library adds to every action it sets
  struct sigaction action {};
  (void)sigaction(SIGCHLD, nullptr, &action);
  state += "SIGCHLD " + std::to_string(reinterpret_cast<std::uintptr_t>(action.sa_handler)) +
           " flags " + std::to_string(action.sa_flags & ~kRestorer) + " mask ";
#ifndef __SANITIZE_THREAD__  // which keeps a mask of its own
  for (int signal = 1; signal < NSIG; ++signal) {
    state += std::to_string(sigismember(&action.sa_mask, signal));
  }
#endif
  return state;
}

LeakCheck::~LeakCheck() {
  EXPECT_EQ(ProcessState(), before);
  EXPECT_TRUE(waitpid(-1, nullptr, WNOHANG) < 0 && errno == ECHILD) << "a child is left";
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
  while (waitpid(pid, &status, 0) < 0 && errno == EINTR) continue;
  return status == 0;
}
