// The first-use load from a store that keeps texts, in a process of its own:
// stored filters go behind those added at run time and are listed, the
// format word comes from the store, repeat suppression is not loaded, and a
// line logged during the load doesn't load again.
#include "logTestSupport.h"

#include <gtest/gtest.h>

namespace {

using Lines = std::vector<std::string>;
using logtest::LineRecorder;
using logtest::MemoryStore;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

int reads = 0;

// Reads from the memory store, and logs a line at the first read.
int32_t readAndLog(const char *key, int32_t index, char *buffer) {
    if (reads++ == 0)
        LogInfo("store", "runtime line from the store\n");
    return MemoryStore::read(key, index, buffer);
}

constexpr SettingsStore loggingStore{readAndLog, MemoryStore::writeText, MemoryStore::writeFlag};

TEST(LogFirstUse, StoredSettingsLoadBehindRunTimeOnes) {
    LineRecorder recorder;
    MemoryStore store;
    SettingsStoreSet(&loggingStore);
    MemoryStore::put("showfilter", 0, "stored");
    MemoryStore::put("showfilter", 3, "kept");
    MemoryStore::put("cullfilter", 1, "culled");
    MemoryStore::put("logformat", 0, "time level");
    MemoryStore::put("spewfilter", 0, "True");
    LogShowAdd("runtime");

    CaptureStdout();
    LogInfo("os", "runtime line\n");
    EXPECT_EQ(GetCapturedStdout(), "show filters:\n"
                                   "  \"runtime\"\n"
                                   "  \"stored\"\n"
                                   "  \"kept\"\n"
                                   "cull filters:\n"
                                   "  \"culled\"\n");
    EXPECT_EQ(LogGetFormat(), LOG_FORMAT_TIME | LOG_FORMAT_LEVEL);
    EXPECT_EQ(LogGetSpewFilter(), 0);

    LogInfo("os", "kept but culled\n");
    LogInfo("os", "other\n");
    LogInfo("os", "kept\n");
    // Loaded once: a later line lists nothing and adds no second copy.
    CaptureStdout();
    LogInfo("os", "kept again\n");
    EXPECT_EQ(GetCapturedStdout(), "");
    LogShowRemove("kept");
    LogInfo("os", "kept once more\n");
    EXPECT_EQ(LineRecorder::take(),
              (Lines{"INFO  pc[0]: store: runtime line from the store\n",
                     "INFO  pc[0]: os: runtime line\n", "INFO  pc[0]: os: kept\n",
                     "INFO  pc[0]: os: kept again\n"}));
}

} // namespace
