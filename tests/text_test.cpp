#include <gtest/gtest.h>

#include "gxclient_util.h"

// The tables stand in gxutil.session, the laws in fuzz/.
TEST(DecodeStringListDeathTest, StopsOnANullOutputInEveryBuild) {
  EXPECT_DEATH(GXUtils::DecodeStringList("a", nullptr, ','),
               "gxclient_util_text\\.cpp.*DecodeStringList.*Assertion `output'");
}
