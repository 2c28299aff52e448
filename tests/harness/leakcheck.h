#pragma once

#include <functional>
#include <string>

/// The descriptors open now and what they are open on, one a line, and the action for SIGCHLD.
std::string ProcessState();

/// Fails the test unless, when it goes out of scope, the same descriptors are open as at its start,
/// no child is left and the action for SIGCHLD is the same.
struct LeakCheck {
  ~LeakCheck();

  const std::string before = ProcessState();
};

/// Runs `body` in a forked child. True when it came back without a failed expectation.
bool PassesInChild(const std::function<void()>& body);
