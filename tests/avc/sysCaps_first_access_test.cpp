// Tests of the capability tables in a process of their own, without the test seam: the type starts
// at 0, and the first access selects the set and reads the board once, even for a bad category.
#include "avc/main/sysCaps.h"

#include "avc/main/sysType.h"
#include "tests/avc/sysTypeEnvGuard.h"

#include <gtest/gtest.h>

namespace {

// One scenario in one test: the selection happens once per process, so the steps depend on order.
TEST(SysCapsFirstAccess, SelectsOnceAtTheFirstCallWhateverFollows) {
    EXPECT_EQ(SysTypeGet(), 0); // nothing has set the type in this process

    ScopedEnv env(SYS_HDAM_ENV_NAME, "none");
    SysTypeSet(23);
    EXPECT_EQ(SysCapsGet(5, "HwFamily", 0, nullptr), 0); // bad category, but the set is chosen

    env.Set("DM642");
    SysTypeSet(20);
    EXPECT_EQ(SysTypeGet(), 20);
    EXPECT_EQ(SysCapsGet(SYS_CAPS_VIDEO, "HdamBoardType", 0, nullptr), 1);
    EXPECT_EQ(SysCapsGet(SYS_CAPS_VIDEO, "HdamDspCnt", 0, nullptr), 0);
    // Set 23 has a second PixelWorks device with gains; set 20 has none.
    EXPECT_STREQ(
        reinterpret_cast<const char *>(SysCapsGet(SYS_CAPS_VIDEO, "CompGains", 1, nullptr)),
        "67, 64, 66, -1, -1, -1");
    EXPECT_EQ(SysCapsGet(SYS_CAPS_VIDEO, "HwNumPixelWorks", 0, nullptr), 3);
}

} // namespace
