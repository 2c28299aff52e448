// Looks for a text that fails a check.

#include <cstdint>

#include <gtest/gtest.h>

#include "check.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  testing::FLAGS_gtest_break_on_failure = true;
  CheckText({data, data + size});
  return 0;
}
