// The first-use load, in a process of its own: an empty line doesn't load; the first line does,
// once, even when a line is logged during the load. Stored filters go behind those added at run
// time and are listed; with no stored "logformat" the format word goes from 8 to 0; repeat
// suppression is not loaded.
#include "logTestSupport.h"

#include <gtest/gtest.h>

namespace {

using logtest::LineRecorder;
using logtest::Lines;
using logtest::MemoryStore;

// Reads from the memory store, and logs a line at the first read.
int32_t readAndLog(const char *key, int32_t index, char *buffer) {
    static int reads = 0;
    if (reads++ == 0)
        LogInfo("store", "runtime line from the store\n");
    return MemoryStore::read(key, index, buffer);
}

TEST(LogFirstUse, LoadsOnceAtTheFirstLine) {
    LogEnqueueObserverSet(LineRecorder::observe);
    MemoryStore store;
    const SettingsStore loggingStore{readAndLog, MemoryStore::write, MemoryStore::flag};
    SettingsStoreSet(&loggingStore);
    MemoryStore::write("showfilter", 0, "stored");
    MemoryStore::write("showfilter", 3, "kept");
    MemoryStore::write("cullfilter", 1, "culled");
    MemoryStore::write("spewfilter", 0, "True");
    LogShowAdd("runtime");

    EXPECT_EQ(LogFilterLine("", 0), 0);
    LogInfo("os", "a fragment reaches no filter, ");
    EXPECT_EQ(LogGetFormat(), LOG_FORMAT_PROC);

    testing::internal::CaptureStdout();
    LogInfo("os", "runtime line\n");
    LogInfo("os", "kept\n");
    LogInfo("os", "kept but culled\n");
    LogInfo("os", "other\n");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "show filters:\n"
                                                      "  \"runtime\"\n"
                                                      "  \"stored\"\n"
                                                      "  \"kept\"\n"
                                                      "cull filters:\n"
                                                      "  \"culled\"\n");
    EXPECT_EQ(LogGetFormat(), 0u);
    EXPECT_EQ(LogGetSpewFilter(), 0);
    EXPECT_EQ(LineRecorder::take(),
              (Lines{"INFO  pc[0]: store: runtime line from the store\n",
                     "INFO  pc[0]: os: a fragment reaches no filter, runtime line\n",
                     "INFO  pc[0]: os: kept\n"}));
}

} // namespace
