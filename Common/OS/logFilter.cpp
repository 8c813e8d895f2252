// The log filters and format settings: show and cull tables, the format
// word, the repeat and forward flags, their settings keys and their load at
// the first line.
#include "Common/OS/log.h"

#include "Common/OS/osAssert.h"
#include "Common/OS/settings.h"

#include <array>
#include <atomic>
#include <cstdio>
#include <cstring>
#include <string_view>
#include <strings.h>

namespace {

// Settings keys and the sizes their readers offer.
constexpr const char *logKeySpew   = "spewfilter";
constexpr const char *logKeyFormat = "logformat";
constexpr int logSpewReadSize      = 384;

// One filter table. A slot is free when its first character is 0; `count`
// follows the filled slots. No lock: see the header.
struct LogFilterTable {
    char slots[LOG_FILTER_SLOTS][LOG_FILTER_WIDTH];
    std::atomic<int32_t> count;
    const char *key; // settings key, one index per slot
    bool show;       // picks the table's own messages
};

LogFilterTable logShowTable{{}, 0, "showfilter", true};
LogFilterTable logCullTable{{}, 0, "cullfilter", false};

// The first-use load has begun.
std::atomic<int32_t> logSettingsLoaded{0};

// Bit LOG_FORMAT_PROC alone at start. That bit is held, listed and stored
// but takes nothing out of the output: the processor column stays in every
// printed line whatever the bit. Tying the column to it would drop the column
// from every line after the first one, since the first line loads the format
// word from the store, which keeps nothing, and so clears the bit.
std::atomic<uint32_t> logFormat{LOG_FORMAT_PROC};
std::atomic<int32_t> logSpewFilter{0};
std::atomic<int32_t> logForward{0};

// Words of the format bits, in the order they are written.
struct LogFormatRow {
    uint32_t bit;     // one bit of the format word
    const char *word; // its word in the settings and listings
};

// clang-format off
/* Bit, Word */
constexpr std::array<LogFormatRow, 4> logFormatTable{{
    {LOG_FORMAT_DATE,  "date"},
    {LOG_FORMAT_TIME,  "time"},
    {LOG_FORMAT_LEVEL, "level"},
    {LOG_FORMAT_PROC,  "proc"},
}};
// clang-format on

constexpr bool logFormatTableIsSound() {
    uint32_t seen    = 0;
    size_t allLength = 0;
    for (const LogFormatRow &row : logFormatTable) {
        if (row.bit == 0 || (row.bit & (row.bit - 1)) != 0 || (seen & row.bit) != 0)
            return false;
        seen |= row.bit;
        allLength += std::string_view(row.word).size() + 1;
    }
    return allLength < LOG_FORMAT_WORDS_SIZE;
}
static_assert(logFormatTableIsSound(), "distinct single bits whose words fit the buffer");

// The one lookup of the format table: the bit of an exact, case-sensitive
// word, 0 for any other word.
uint32_t logFormatBit(std::string_view word) {
    for (const LogFormatRow &row : logFormatTable) {
        if (word == row.word)
            return row.bit;
    }
    return 0;
}

bool logOnFirstProcessor() {
    return processorNumber() == 0;
}

// Whether any filled slot of `table` is a substring of `line` (case counts).
bool logFilterHolds(const LogFilterTable &table, const char *line) {
    for (const auto &slot : table.slots) {
        if (slot[0] != '\0' && std::strstr(line, slot) != nullptr)
            return true;
    }
    return false;
}

int logFilterAdd(LogFilterTable &table, const char *text) {
    OS_ASSERT(text != nullptr);
    // An empty text would leave its slot free while counting it, and a show
    // table counted but empty would drop every line: it adds nothing.
    if (text[0] == '\0')
        return 0;
    for (auto &slot : table.slots) {
        if (slot[0] != '\0')
            continue;
        // Cut to the slot's width. The first character goes in last: the
        // slot turns filled after its text is written.
        std::strncpy(slot + 1, text + 1, LOG_FILTER_WIDTH - 1);
        slot[LOG_FILTER_WIDTH - 1] = '\0';
        slot[0]                    = text[0];
        table.count.fetch_add(1, std::memory_order_relaxed);
        return 0;
    }
    if (table.show)
        std::printf("\"%s\" show filter not added, table full\n", text);
    else
        std::printf("\"%s\" cull filter not added, table full\n", text);
    return -1;
}

int logFilterRemove(LogFilterTable &table, const char *text) {
    OS_ASSERT(text != nullptr);
    if (std::strcmp(text, "*") == 0) {
        for (auto &slot : table.slots)
            slot[0] = '\0';
        table.count.store(0, std::memory_order_relaxed);
        return 0;
    }
    // Compared ignoring case over the slot's text width, so the same long
    // text that was cut on its way in removes its slot.
    for (auto &slot : table.slots) {
        if (slot[0] != '\0' && strncasecmp(slot, text, LOG_FILTER_WIDTH - 1) == 0) {
            slot[0] = '\0';
            table.count.fetch_sub(1, std::memory_order_relaxed);
            return 0;
        }
    }
    if (table.show)
        std::printf("\"%s\" show filter not found\n", text);
    else
        std::printf("\"%s\" cull filter not found\n", text);
    return 0;
}

int logFilterList(const LogFilterTable &table) {
    std::fputs(table.show ? "show filters:\n" : "cull filters:\n", stdout);
    for (const auto &slot : table.slots) {
        if (slot[0] != '\0')
            std::printf("  \"%s\"\n", slot);
    }
    return 0;
}

int logFilterSave(const LogFilterTable &table) {
    if (!logOnFirstProcessor())
        return 0;
    for (int32_t index = 0; index < LOG_FILTER_SLOTS; ++index)
        SettingsWriteText(table.key, index, table.slots[index]);
    return 0;
}

// Adds the stored texts behind what the table holds; counts those that went
// in (a full table turns the rest away, each with its message).
int logFilterLoad(LogFilterTable &table) {
    if (!logOnFirstProcessor())
        return 0;
    int loaded = 0;
    for (int32_t index = 0; index < LOG_FILTER_SLOTS; ++index) {
        char text[LOG_FILTER_WIDTH];
        text[0] = '\0';
        SettingsReadText(table.key, index, text);
        text[LOG_FILTER_WIDTH - 1] = '\0';
        if (text[0] != '\0' && logFilterAdd(table, text) == 0)
            ++loaded;
    }
    return loaded;
}

// The first-use load: stored filters (listed when there are any) and the
// format word. The repeat flag is not loaded here.
void logLoadSettings() {
    if (LogShowLoad() > 0)
        LogShowList();
    if (LogCullLoad() > 0)
        LogCullList();
    LogFormatLoad();
}

} // namespace

extern "C" {

int LogFilterLine(const char *line, int length) {
    if (line == nullptr || line[0] == '\0')
        return 0;
    // The flag is set before loading, so a line logged during the load
    // doesn't load again, and of two threads only one loads.
    if (logSettingsLoaded.load(std::memory_order_acquire) == 0 &&
        logSettingsLoaded.exchange(1, std::memory_order_acq_rel) == 0)
        logLoadSettings();

    // Show filters say what may pass; cull filters then take lines out.
    if (logShowTable.count.load(std::memory_order_relaxed) > 0 &&
        !logFilterHolds(logShowTable, line))
        return 0;
    if (logCullTable.count.load(std::memory_order_relaxed) > 0 &&
        logFilterHolds(logCullTable, line))
        return 0;
    LogEnqueue(line, length);
    return length;
}

int LogShowAdd(const char *text) {
    return logFilterAdd(logShowTable, text);
}
int LogCullAdd(const char *text) {
    return logFilterAdd(logCullTable, text);
}
int LogShowRemove(const char *text) {
    return logFilterRemove(logShowTable, text);
}
int LogCullRemove(const char *text) {
    return logFilterRemove(logCullTable, text);
}
int LogShowList(void) {
    return logFilterList(logShowTable);
}
int LogCullList(void) {
    return logFilterList(logCullTable);
}
int LogShowSave(void) {
    return logFilterSave(logShowTable);
}
int LogCullSave(void) {
    return logFilterSave(logCullTable);
}
int LogShowLoad(void) {
    return logFilterLoad(logShowTable);
}
int LogCullLoad(void) {
    return logFilterLoad(logCullTable);
}

int LogSetFormat(uint32_t word) {
    logFormat.store(word, std::memory_order_relaxed);
    return 0;
}

uint32_t LogGetFormat(void) {
    return logFormat.load(std::memory_order_relaxed);
}

int LogFormatWords(uint32_t word, char *buffer) {
    size_t length = 0;
    for (const LogFormatRow &row : logFormatTable) {
        if ((word & row.bit) == 0)
            continue;
        const size_t wordLength = std::strlen(row.word);
        std::memcpy(buffer + length, row.word, wordLength);
        length += wordLength;
        buffer[length++] = ' ';
    }
    buffer[length] = '\0';
    return 0;
}

int LogFormatList(void) {
    if (!logOnFirstProcessor())
        return 0;
    char words[LOG_FORMAT_WORDS_SIZE];
    LogFormatWords(LogGetFormat(), words);
    std::puts(words);
    return 0;
}

int LogFormatSave(void) {
    if (!logOnFirstProcessor())
        return 0;
    char words[LOG_FORMAT_WORDS_SIZE];
    LogFormatWords(LogGetFormat(), words);
    SettingsWriteText(logKeyFormat, 0, words);
    return 0;
}

int LogFormatLoad(void) {
    if (!logOnFirstProcessor())
        return 0;
    char text[LOG_FORMAT_WORDS_SIZE];
    text[0] = '\0';
    SettingsReadText(logKeyFormat, 0, text);
    text[LOG_FORMAT_WORDS_SIZE - 1] = '\0';

    // Nothing read means no bits: the word becomes 0.
    uint32_t word = 0;
    std::string_view rest(text);
    while (!rest.empty()) {
        const size_t blank = rest.find(' ');
        word |= logFormatBit(rest.substr(0, blank));
        rest.remove_prefix(blank == std::string_view::npos ? rest.size() : blank + 1);
    }
    LogSetFormat(word);
    return 0;
}

int LogSetSpewFilter(int32_t flag) {
    logSpewFilter.store(flag, std::memory_order_relaxed);
    SettingsWriteFlag(logKeySpew, 0, flag);
    return 0;
}

int32_t LogGetSpewFilter(void) {
    return logSpewFilter.load(std::memory_order_relaxed);
}

int LogSpewFilterLoad(void) {
    if (!logOnFirstProcessor())
        return 0;
    char text[logSpewReadSize];
    text[0] = '\0';
    if (SettingsReadText(logKeySpew, 0, text) != 0)
        return 0;
    text[logSpewReadSize - 1] = '\0';
    logSpewFilter.store(strcasecmp(text, "True") == 0 ? 1 : 0, std::memory_order_relaxed);
    return 0;
}

int LogSetForward(int32_t flag) {
    logForward.store(flag, std::memory_order_relaxed);
    return 0;
}

int32_t LogGetForward(void) {
    return logForward.load(std::memory_order_relaxed);
}

} // extern "C"
