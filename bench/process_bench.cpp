#include <fcntl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "bench.h"
#include "gxclient_util.h"

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

constexpr const char* kTrue[] = {"true", nullptr};
constexpr const char* kCapture[] = {"head", "-c", "67108864", "/dev/zero", nullptr};
constexpr const char* kCaptureText[] = {"sh", "-c", "yes | head -c 67108864", nullptr};

}  // namespace

void bench::AddProcessRows() {
  Row("System(true)", [] {
    GXUtils::System(kTrue);
  }).Against("bare pipe, fork, exec, wait", 1.10, [] { BareRun(kTrue); });
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
}
