// Helpers of the log tests: a recorder of the lines that reach the queue, a settings store in
// memory, and a fixture that brings the process-wide log state back to a known start.
#ifndef TESTS_LOG_LOGTESTSUPPORT_H
#define TESTS_LOG_LOGTESTSUPPORT_H

#include "Common/OS/log.h"
#include "Common/OS/logSeam.h"
#include "Common/OS/settings.h"
#include "Common/OS/settingsStore.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace logtest {

using Lines = std::vector<std::string>;

// Records every line that enters LogEnqueue, from any thread, in arrival order; a length that
// disagrees with the text is recorded as "bad length".
struct LineRecorder {
    static Lines take() {
        std::lock_guard<std::mutex> hold(mutex);
        return std::exchange(lines, {});
    }
    static void observe(const char *line, int length) {
        std::lock_guard<std::mutex> hold(mutex);
        lines.emplace_back(static_cast<size_t>(length) == std::strlen(line) ? line : "bad length");
    }
    static inline std::mutex mutex;
    static inline Lines lines;
};

// A settings store in memory, in place for the object's lifetime; flags are kept as "True" or
// "False", and with `failReads` every read fails.
struct MemoryStore {
    MemoryStore() { SettingsStoreSet(&store); }
    ~MemoryStore() {
        SettingsStoreSet(nullptr);
        texts.clear();
        failReads = false;
    }
    static std::string get(const std::string &key, int32_t index) {
        auto it = texts.find({key, index});
        return it == texts.end() ? "<none>" : it->second;
    }
    static int32_t read(const char *key, int32_t index, char *buffer) {
        auto it   = texts.find({key, index});
        buffer[0] = '\0';
        if (failReads || it == texts.end())
            return SETTINGS_NOT_STORED;
        std::strcpy(buffer, it->second.c_str());
        return 0;
    }
    static int32_t write(const char *key, int32_t index, const char *text) {
        texts[{key, index}] = text;
        return 0;
    }
    static int32_t flag(const char *key, int32_t index, int32_t on) {
        return write(key, index, on != 0 ? "True" : "False");
    }
    static inline std::map<std::pair<std::string, int32_t>, std::string> texts;
    static inline bool failReads = false;
    static constexpr SettingsStore store{read, write, flag};
};

// Brings the log state to a known start with public operations only: empty filter tables, no held
// fragment, no pending repeat count (a distinct finished line with suppression on reports and
// clears it), suppression off.
class LogTest : public ::testing::Test {
  protected:
    static void reset() {
        static unsigned resets = 0;
        LogShowRemove("*");
        LogCullRemove("*");
        LogSetSpewFilter(1);
        LogLevelPrintf(7, "reset %u\n", ++resets);
        LogSetSpewFilter(0);
    }
    void SetUp() override {
        reset();
        LogEnqueueObserverSet(LineRecorder::observe);
        LineRecorder::take();
    }
    void TearDown() override {
        LogEnqueueObserverSet(nullptr);
        reset();
    }
    static Lines lines() { return LineRecorder::take(); }
};

} // namespace logtest

#endif
