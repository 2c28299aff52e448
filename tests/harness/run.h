/// @file
/// The calls that start programs as a test sees them, and what no call may leave behind.
#pragma once

#include <csignal>
#include <cstdlib>
#include <functional>
#include <optional>
#include <ostream>
#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "gxclient_util.h"
#include "harness/fault.h"
#include "harness/log.h"
#include "harness/temp_dir.h"

constexpr int kUnwritten = -77;  ///< what an output parameter holds before a call

/// All that a call did. A test compares it whole, and a failure prints it whole.
struct Outcome {
  int result = 0;
  int status = kUnwritten;
  std::string output;
  std::string errors;  ///< what arrived at the standard error
  std::string log;
  std::string thrown;  ///< the code and the message of an exception, as in "6 Empty command"
  bool childLeft = false;

  bool operator==(const Outcome&) const = default;
};
std::ostream& operator<<(std::ostream& out, const Outcome& outcome);

/// Calls System().
Outcome RunProgram(const std::string& command, std::optional<Fault> fault = {});

/// Calls SystemNowait() without output pipes.
Outcome StartProgram(const std::string& command, std::optional<Fault> fault = {});

/// Runs `body` in a forked child, where it may change the environment, limits and descriptors.
/// Returns whether every expectation in it held.
bool PassesInChild(const std::function<void()>& body);

/// Closes the standard descriptors in the set: bit 0 for descriptor 0, and so on. For a child.
void CloseStandard(int set);

/// A handler for SIGCHLD that leaves no child to anybody else.
void ReapEveryChild(int signal);

/// Reads the descriptor to its end.
std::string ReadAll(int fd);

/// Fails the test unless it ends with the descriptors and the SIGCHLD action that it began with,
/// and without a child.
class LeakCheck {
 public:
  LeakCheck();
  LeakCheck(const LeakCheck&) = delete;
  LeakCheck& operator=(const LeakCheck&) = delete;
  ~LeakCheck();

 private:
  std::string before_;
};

/// Repeats `call` with the first, second, ... use of each library function failing, until none
/// fails. The call may return or throw anything, but leaves no descriptor and no zombie behind.
void LeavesNothingBehind(const std::function<void()>& call);
