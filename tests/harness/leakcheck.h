#pragma once

#include <csignal>
#include <functional>
#include <string>

/// Fails the test unless, when it goes out of scope, the same descriptors are open as at its start,
/// no child is left and the action for SIGCHLD is the same.
class LeakCheck {
 public:
  LeakCheck();
  ~LeakCheck();
  LeakCheck(const LeakCheck&) = delete;
  LeakCheck& operator=(const LeakCheck&) = delete;

 private:
  std::string descriptors_;
  struct sigaction sigchld_ {};
};

/// The descriptors open now, and what they are open on, one a line.
std::string OpenDescriptors();

/// Runs `body` in a forked child. True when it came back without a failed expectation.
bool PassesInChild(const std::function<void()>& body);
