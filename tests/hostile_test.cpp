// The law over the functions whose own tests do not have it yet.

#include "harness/harness.h"
#include "support/exportdata.h"

using namespace GXUtils;

namespace {

// An output parameter that lives as long as the call.
template <class T = std::string>
T* Out(T&& value = T()) {
  return &value;
}

struct Exports : std::vector<Exportdata*> {
  ~Exports() {
    for (const Exportdata* record : *this) delete record;
  }
};

TEST(Hostile, AnyCallMayFailAndNothingStaysBehind) {
  const std::string text(100, 'A');
  // What opens, starts or owns something that is not a string.
  const std::pair<const char*, std::function<void()>> functions[] = {
      {"Transcode", [&] { Transcode("UTF-8", "", text); }},
      {"ToLower", [&] { ToLower(text + text + text); }},
      {"GenerateTempFile", [&] { unlink(GenerateTempFile(text, nullptr).c_str()); }},
      {"ShowInFileManager", [] { ShowInFileManager("/tmp"); }},
      {"GetBogoMips", [] { GetBogoMips(); }},
      {"exports", [&] { parse_nfs_export_option("/" + text + ",ro,/b,rw,/c", *Out<Exports>()); }},
  };
  EXPECT_TRUE(PassesInChild([&] {
    for (const char* display : {"DISPLAY", "WAYLAND_DISPLAY"}) (void)unsetenv(display);
    (void)setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/no/such", 1);
    testing::internal::CaptureStderr();
    for (const auto& [function, call] : functions) {
      for (const char* name : {"new", "pipe", "fcntl", "fork", "read", "waitpid", "syscall",
                               "iconv", "iconv_open", "fopen"}) {
        bool failed = true;
        for (int nth = 1; failed; ++nth) {
          SCOPED_TRACE(testing::Message() << function << ", " << name << " " << nth);
          const LeakCheck leaks;
          try {
            const Failing fault(name, nth, EINTR);
            call();
            failed = fault.Happened();
          } catch (const std::bad_alloc&) {
            ASSERT_LT(nth, 300) << "it never succeeds";
            continue;
          }
          while (waitpid(-1, nullptr, 0) > 0) continue;  // what was started, or could not be told
        }
      }
    }
    (void)testing::internal::GetCapturedStderr();
  }));
}

}  // namespace
