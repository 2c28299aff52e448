#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <fcntl.h>
#include <malloc.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "bench.h"
#include "gxclient_util.h"

namespace {

void Require(bool isTrue) {
  if (!isTrue) std::abort();
}

// The bare calls that run a program: one pipe, one child, one read after the other.
void BareRun(const char* const* argv, std::string* output = nullptr) {
  int ends[2];
  Require(pipe(ends) == 0);
  const pid_t pid = fork();
  if (pid == 0) {
    dup2(ends[1], 1);
    dup2(ends[1], 2);
    syscall(SYS_close_range, 3, 1023, 0);
    execvp(argv[0], const_cast<char* const*>(argv));
    _exit(128);
  }
  close(ends[1]);
  char piece[255];
  ssize_t count = 0;
  while ((count = read(ends[0], piece, sizeof piece)) > 0) {
    if (output != nullptr) output->append(piece, static_cast<std::size_t>(count));
  }
  close(ends[0]);
  int status = 0;
  Require(waitpid(pid, &status, 0) == pid && status == 0);
}

// The same for a detached start: the parent learns of the exec from a pipe that closes with it.
void BareStart(const char* const* argv) {
  int ends[2];
  Require(pipe(ends) == 0 && fcntl(ends[1], F_SETFD, FD_CLOEXEC) == 0);
  const pid_t pid = fork();
  if (pid == 0) {
    close(ends[0]);
    syscall(SYS_close_range, 3, ends[1] - 1, 0);
    syscall(SYS_close_range, ends[1] + 1, 1023, 0);
    setsid();
    execvp(argv[0], const_cast<char* const*>(argv));
    _exit(1);
  }
  close(ends[1]);
  char report[16];
  Require(read(ends[0], report, sizeof report) == 0);
  close(ends[0]);
  Require(waitpid(pid, nullptr, 0) == pid);
}

void Capture(const std::string& command, std::size_t size) {
  FILE* stream = popen(command.c_str(), "r");
  if (stream == nullptr) std::abort();
  std::string output;
  char piece[4096];
  while (const std::size_t count = std::fread(piece, 1, sizeof piece, stream)) {
    output.append(piece, count);
  }
  Require(pclose(stream) == 0 && output.size() == size);
}

// Rows that start a program from a process which holds `memory` bytes more.
void AddStartRows(const std::string& name, std::size_t memory) {
  static constexpr const char* kExit[] = {BENCH_EXIT, nullptr};
  bench::Row(
      "System, " + name, [] { GXUtils::System(kExit); }, memory)
      .Against("the bare calls", [] { BareRun(kExit); })
      .Against("popen", [] { Capture(BENCH_EXIT, 0); });
  const auto start = [] { Require(waitpid(GXUtils::SystemNowait(kExit), nullptr, 0) > 0); };
  bench::Row("SystemNowait, " + name, start, memory).Against("the bare calls", [] {
    BareStart(kExit);
  });
}

void AddCaptureRow() {
  static constexpr const char* kText[] = {"sh", "-c", "yes | head -c 16777216", nullptr};
  static constexpr std::size_t kSize = 16777216;
  bench::Row("System, 16 MiB captured",
             [] {
               std::string output;
               GXUtils::System(kText, &output);
               Require(output.size() == kSize);
             })
      .Against("the bare calls",
               [] {
                 std::string output;
                 BareRun(kText, &output);
                 Require(output.size() == kSize);
               })
      .Against("popen", [] { Capture(kText[2], kSize); });
}

}  // namespace

void bench::AddRows() {
  mallopt(M_MMAP_THRESHOLD, 1 << 17);  // freed memory must not stay and slow the next fork()
  AddStartRows("a program that only exits", 0);
  AddStartRows("the same from 256 MiB", 256U << 20);
  AddCaptureRow();
}
