// Helpers of the log tests: a recorder of the lines that reach the queue, a
// settings store that keeps texts in memory, and a fixture that brings the
// process-wide log state back to a known start.
#ifndef TESTS_LOG_LOGTESTSUPPORT_H
#define TESTS_LOG_LOGTESTSUPPORT_H

#include "Common/OS/log.h"
#include "Common/OS/logSeam.h"
#include "Common/OS/settings.h"
#include "Common/OS/settingsStore.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace logtest {

// Records every line that enters LogEnqueue, in arrival order, from any
// thread. A length that disagrees with the text is recorded as a failure.
class LineRecorder {
  public:
    LineRecorder() { LogEnqueueObserverSet(&LineRecorder::observe); }
    ~LineRecorder() { LogEnqueueObserverSet(nullptr); }
    LineRecorder(const LineRecorder &)            = delete;
    LineRecorder &operator=(const LineRecorder &) = delete;

    static std::vector<std::string> take() {
        std::lock_guard<std::mutex> hold(mutex());
        return std::exchange(lines(), {});
    }
    static int lengthMismatches() {
        std::lock_guard<std::mutex> hold(mutex());
        return mismatches();
    }

  private:
    static void observe(const char *line, int length) {
        std::lock_guard<std::mutex> hold(mutex());
        lines().emplace_back(line);
        if (static_cast<size_t>(length) != std::strlen(line))
            ++mismatches();
    }
    static std::mutex &mutex() {
        static std::mutex m;
        return m;
    }
    static std::vector<std::string> &lines() {
        static std::vector<std::string> l;
        return l;
    }
    static int &mismatches() {
        static int n = 0;
        return n;
    }
};

// A settings store in memory. Flags are kept as "True" or "False"; `failReads`
// makes every read fail like the system's store.
class MemoryStore {
  public:
    MemoryStore() { previous_ = SettingsStoreSet(&store); }
    ~MemoryStore() {
        SettingsStoreSet(previous_);
        texts().clear();
        failReads() = false;
    }
    MemoryStore(const MemoryStore &)            = delete;
    MemoryStore &operator=(const MemoryStore &) = delete;

    static void put(const std::string &key, int32_t index, const std::string &text) {
        texts()[{key, index}] = text;
    }
    static std::string get(const std::string &key, int32_t index) {
        auto it = texts().find({key, index});
        return it == texts().end() ? std::string("<none>") : it->second;
    }
    static bool &failReads() {
        static bool fail = false;
        return fail;
    }

    static int32_t read(const char *key, int32_t index, char *buffer) {
        buffer[0] = '\0';
        auto it   = texts().find({key, index});
        if (failReads() || it == texts().end())
            return SETTINGS_NOT_STORED;
        std::strcpy(buffer, it->second.c_str());
        return 0;
    }
    static int32_t writeText(const char *key, int32_t index, const char *text) {
        put(key, index, text);
        return 0;
    }
    static int32_t writeFlag(const char *key, int32_t index, int32_t flag) {
        put(key, index, flag != 0 ? "True" : "False");
        return 0;
    }
    static constexpr SettingsStore store{read, writeText, writeFlag};

  private:
    using Texts = std::map<std::pair<std::string, int32_t>, std::string>;
    static Texts &texts() {
        static Texts t;
        return t;
    }
    const SettingsStore *previous_ = nullptr;
};

// Brings the log state to a known start with public operations only: empty
// filter tables, no held fragment, no pending repeat count, repeat
// suppression and forwarding off. Lines of the reset itself are not recorded.
inline void resetLogState() {
    static unsigned resets = 0;
    LogShowRemove("*");
    LogCullRemove("*");
    // A distinct finished line empties the hold and, with suppression on,
    // reports and clears any pending count.
    LogSetSpewFilter(1);
    LogLevelPrintf(7, "reset %u\n", ++resets);
    LogSetSpewFilter(0);
    LogSetForward(0);
}

class LogTest : public ::testing::Test {
  protected:
    void SetUp() override {
        resetLogState();
        LineRecorder::take();
        recorder_ = std::make_unique<LineRecorder>();
    }
    void TearDown() override {
        recorder_.reset();
        EXPECT_EQ(LineRecorder::lengthMismatches(), 0);
        resetLogState();
    }
    static std::vector<std::string> lines() { return LineRecorder::take(); }

  private:
    std::unique_ptr<LineRecorder> recorder_;
};

} // namespace logtest

#endif
