#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "bench.h"
#include "gxclient_util.h"

#ifdef __GLIBC__
#include <malloc.h>
#endif

using namespace std::string_literals;

namespace {

// What running a program costs without the module: one pipe, one child, one read after the other.
void BareRun(const char* const* argv, std::string* output = nullptr) {
  int ends[2];
  if (pipe(ends) != 0) std::abort();
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
  if (waitpid(pid, &status, 0) != pid || status != 0) std::abort();
}

// The same for a detached start: the parent learns of the exec from a pipe that closes with it.
void BareStart(const char* const* argv) {
  int ends[2];
  if (pipe(ends) != 0 || fcntl(ends[1], F_SETFD, FD_CLOEXEC) != 0) std::abort();
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
  if (read(ends[0], report, sizeof report) != 0) std::abort();
  close(ends[0]);
  if (waitpid(pid, nullptr, 0) != pid) std::abort();
}

// SplitCommandLine for lines without quotes.
std::vector<std::string> SplitAtSpaces(const std::string& line) {
  std::vector<std::string> arguments;
  const char* start = line.data();
  const char* end = start + line.size();
  while (const void* found = std::memchr(start, ' ', static_cast<std::size_t>(end - start))) {
    const char* space = static_cast<const char*>(found);
    if (space != start) arguments.emplace_back(start, space);
    start = space + 1;
  }
  if (start != end) arguments.emplace_back(start, end);
  return arguments;
}

constexpr const char* kExit[] = {BENCH_EXIT, nullptr};
constexpr const char* kTrue[] = {"/bin/true", nullptr};
constexpr const char* kCapture[] = {"head", "-c", "67108864", "/dev/zero", nullptr};
constexpr const char* kCaptureText[] = {"sh", "-c", "yes | head -c 67108864", nullptr};

// Rows that start a program from a process which holds `memory` bytes more.
void AddForkRows(const std::string& name, const char* const* argv, std::size_t memory = 0) {
  const auto run = [argv] { GXUtils::System(argv); };
  bench::Row("System, " + name, run, memory).Against("bare pipe, fork, exec, wait", 1.05, [argv] {
    BareRun(argv);
  });
  const auto start = [argv] {
    const int pid = GXUtils::SystemNowait(argv);
    if (waitpid(pid, nullptr, 0) != pid) std::abort();
  };
  bench::Row("SystemNowait, " + name, start, memory).Against("bare pipe, fork, exec", 1.05, [argv] {
    BareStart(argv);
  });
}

}  // namespace

void bench::AddRows() {
#ifdef __GLIBC__
  mallopt(M_MMAP_THRESHOLD, 1 << 17);  // what a row frees does not stay and slow the next fork()
#endif
  AddForkRows("exit only", kExit);
  AddForkRows("/bin/true", kTrue);
  AddForkRows("exit only, from 256 MiB", kExit, 256U << 20);
  Row("System, 64 MiB thrown away", [] {
    GXUtils::System(kCapture);
  }).Against("bare reads of 255 bytes", 1.10, [] { BareRun(kCapture); });
  Row("System, 64 MiB captured", [] {
    std::string output;
    GXUtils::System(kCaptureText, &output);
    if (output.size() != 67108864) std::abort();
  }).Against("bare reads of 255 bytes, appended", 1.10, [] {
    std::string output;
    BareRun(kCaptureText, &output);
  });

  const std::string five = "/usr/bin/program --verbose --output file.txt input";
  std::string megabyte;
  while (megabyte.size() < 1000000) megabyte += five + " ";
  for (const auto& [name, line] : {std::pair("5 arguments", five), std::pair("1 MB", megabyte)}) {
    Row("SplitCommandLine, "s + name, [line = line] {
      benchmark::DoNotOptimize(GXUtils::SplitCommandLine(line));
    }).Against("memchr loop", 1.05, [line = line] {
      benchmark::DoNotOptimize(SplitAtSpaces(std::string(line)));
    });
  }
}
