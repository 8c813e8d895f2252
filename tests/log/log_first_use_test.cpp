// The first-use load with the system's store, in a process of its own: the
// format word goes from 8 to 0 at the first non-empty line, not before.
#include "logTestSupport.h"

#include <gtest/gtest.h>

namespace {

using Lines = std::vector<std::string>;
using logtest::LineRecorder;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

TEST(LogFirstUse, FirstLineClearsTheFormatWordFromTheEmptyStore) {
    LineRecorder recorder;
    EXPECT_EQ(LogGetFormat(), LOG_FORMAT_PROC);

    // An empty line doesn't load; nor does a fragment, which reaches no filter.
    EXPECT_EQ(LogFilterLine("", 0), 0);
    LogInfo("os", "a fragment, ");
    EXPECT_EQ(LogGetFormat(), LOG_FORMAT_PROC);

    // A filter added before the first line stays and works.
    LogShowAdd("keep");
    CaptureStdout();
    LogInfo("os", "keep this\n");
    EXPECT_EQ(GetCapturedStdout(), ""); // nothing loaded, so nothing listed
    EXPECT_EQ(LogGetFormat(), 0u);
    LogInfo("os", "drop this\n");
    EXPECT_EQ(LineRecorder::take(), Lines{"INFO  pc[0]: os: a fragment, keep this\n"});

    // Set at run time, the word holds from then on.
    LogSetFormat(LOG_FORMAT_DATE | LOG_FORMAT_PROC);
    LogShowAdd("pc[0]");
    LogInfo("os", "again\n");
    EXPECT_EQ(LogGetFormat(), LOG_FORMAT_DATE | LOG_FORMAT_PROC);
}

} // namespace
