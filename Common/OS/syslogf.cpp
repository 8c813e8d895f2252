// The trace categories' flags and operations: defaults, enabling and
// disabling, the filter test, look-ups by words, name and value, the header
// format and time text, the hexadecimal conversions and the front doors.
#include "Common/OS/syslogf.h"

#include "Common/OS/os.h"
#include "Common/OS/osAssert.h"

#include <array>
#include <atomic>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <string_view>
#include <strings.h>

// The flag bytes, shared with programs through the header. Entry 0 starts at
// 0x0f: until CmDebgInit every line is dropped (processor 0's bit is clear).
// C linkage comes from the declaration in the header.
uint8_t gRtCategoryFlags[RT_CATEGORY_FLAGS_SIZE] = {0x0f};

namespace {

// Each access to a flag byte is one relaxed atomic operation, so that an
// enable and a disable on other threads never lose each other's bits. C
// programs that touch the bytes themselves see plain bytes.
static_assert(std::atomic_ref<uint8_t>::required_alignment == 1);
std::atomic_ref<uint8_t> rtFlag(uint32_t index) {
    OS_ASSERT(index < RT_CATEGORY_FLAGS_SIZE);
    return std::atomic_ref<uint8_t>(gRtCategoryFlags[index]);
}
uint8_t rtFlagRead(uint32_t index) {
    return rtFlag(index).load(std::memory_order_relaxed);
}

constexpr int32_t rtDebugLevel = 7;
// The report of a category out of bounds: level 3 (ERROR), category 3.
constexpr int32_t rtReportLevel     = 3;
constexpr uint32_t rtReportCategory = 3;

// The categories whose debug output is on after CmDebgInit.
constexpr std::array<uint32_t, 28> gRtDefaultCategories{
    3,  0,   119, 30,  33,  29,  32, 66,  47, 46, 93, 94, 98,  56,
    59, 108, 107, 114, 110, 115, 6,  117, 7,  19, 18, 25, 120, 122};

constexpr bool rtDefaultCategoriesAreCategories() {
    for (uint32_t category : gRtDefaultCategories) {
        if (category >= RT_CATEGORY_COUNT)
            return false;
    }
    return true;
}
static_assert(rtDefaultCategoriesAreCategories(), "default categories are in the table");

// What each header field adds to the header format: its fixed-width format
// and width when its flag has RT_FLAG_FIXED_WIDTH, else its plain format.
struct RtHeaderFieldRow {
    uint32_t field; // flag index, as in gRtHeaderFields
    const char *fixedFormat;
    uint32_t width; // columns of the fixed format
    const char *plainFormat;
};

// clang-format off
/* Field, Fixed-width format, Width (columns), Plain format */
constexpr std::array<RtHeaderFieldRow, RT_HEADER_FIELDS> rtHeaderFieldTable{{
    {RT_HEADER_TIMESTAMP, "%- 13.13s", 13, "%s"},
    {RT_HEADER_LOGLEVEL,  "%- 2.2s",   2,  "%s"},
    {RT_HEADER_CATEGORY,  "%- 15.15s", 15, "%s"},
    {RT_HEADER_ID,        "",          0,  ""},
}};
// clang-format on

constexpr bool rtHeaderFieldTableIsSound() {
    size_t longest = 0;
    for (size_t i = 0; i < rtHeaderFieldTable.size(); ++i) {
        if (rtHeaderFieldTable[i].field != i)
            return false;
        const std::string_view fixed = rtHeaderFieldTable[i].fixedFormat;
        const std::string_view plain = rtHeaderFieldTable[i].plainFormat;
        longest += fixed.size() > plain.size() ? fixed.size() : plain.size();
    }
    return longest < RT_HEADER_FORMAT_SIZE;
}
static_assert(rtHeaderFieldTableIsSound(), "one row per field in order; any format fits");

// The header format and the sum of the fixed widths, rebuilt at start. The
// second width is the same sum, kept beside the first as the system has it;
// nothing in this system reads either, a trace printer of a program does.
char gRtHeaderFormat[RT_HEADER_FORMAT_SIZE] = "%s%s%s";
uint32_t gRtHeaderWidth                     = 0;
uint32_t gRtHeaderWidth2                    = 0;

constexpr char rtHexDigits[] = "0123456789ABCDEF";

// The value of an upper-case hexadecimal digit, or -1.
int rtHexValue(char c) {
    const void *at = c == '\0' ? nullptr : std::memchr(rtHexDigits, c, 16);
    return at == nullptr ? -1 : static_cast<int>(static_cast<const char *>(at) - rtHexDigits);
}

// Whether `category` is one of the table's; reports `operation`'s refusal
// when it isn't.
bool rtCategoryInBounds(uint32_t category, const char *operation) {
    if (category < RT_CATEGORY_COUNT)
        return true;
    CmDebgPrintf(rtReportLevel, rtReportCategory, "", "%s:  category %d out of bounds\n", operation,
                 static_cast<int>(category));
    return false;
}

} // namespace

extern "C" {

int32_t CmDebgInit(void) {
    for (uint32_t i = 0; i < RT_CATEGORY_FLAGS_SIZE; ++i)
        rtFlag(i).store(0, std::memory_order_relaxed);
    rtFlag(RT_MARKER_LAST).store(RT_FLAG_MARKER, std::memory_order_relaxed);
    for (uint32_t category = 0; category < RT_CATEGORY_COUNT; ++category)
        rtFlag(category).fetch_or(RT_FLAG_LISTEN, std::memory_order_relaxed);
    for (uint32_t category : gRtDefaultCategories)
        rtFlag(category).fetch_or(RT_FLAG_DEBUG, std::memory_order_relaxed);
    // The processor bit by processor number, set over the categories' range.
    for (uint32_t processor = 0; processor < RT_CATEGORY_COUNT; ++processor)
        rtFlag(processor).fetch_or(RT_FLAG_PROCESSOR, std::memory_order_relaxed);
    rtFlag(RT_MARKER_FIRST).store(RT_FLAG_MARKER, std::memory_order_relaxed);
    CmDebgBuildHeaderFormat();
    return 0;
}

int32_t CmDebgCategoryEnable(uint32_t category) {
    if (!rtCategoryInBounds(category, __func__))
        return CMDEBG_OUT_OF_BOUNDS;
    rtFlag(category).fetch_or(RT_FLAG_DEBUG | RT_FLAG_LISTEN, std::memory_order_relaxed);
    return 0;
}

int32_t CmDebgCategoryDisable(uint32_t category) {
    if (!rtCategoryInBounds(category, __func__))
        return CMDEBG_OUT_OF_BOUNDS;
    // Debug only: the category stays listened to.
    rtFlag(category).fetch_and(static_cast<uint8_t>(~RT_FLAG_DEBUG), std::memory_order_relaxed);
    return 0;
}

uint32_t CmDebgCategoryFromStrings(const char *group, const char *subgroup, const char *item) {
    if (group == nullptr || subgroup == nullptr || item == nullptr)
        return 0;
    // Each word cut or blank-padded to its field: the key is always 14
    // characters, so only names that fill all three fields can match.
    char key[RT_CATEGORY_NAME_MAX + 1];
    snprintf(key, sizeof key, "%-5.5s%-5.5s%-4.4s", group, subgroup, item);
    uint32_t found = 0;
    for (uint32_t i = 0; i < RT_CATEGORY_COUNT; ++i) {
        // The table's order is checked at compile time too; this guards a
        // table changed behind the build's back.
        OS_ASSERT(gRtCategoryLut[i].value == i);
        if (std::strcmp(key, gRtCategoryLut[i].name) == 0)
            found = i;
    }
    return found;
}

// A level above 7 is not taken for debug here: only level 7 asks the debug
// bit, as the filter has always done.
int32_t CmDebgIsFiltered(int32_t level, uint32_t category) {
    const uint8_t flags = rtFlagRead(category);
    if ((flags & RT_FLAG_LISTEN) == 0)
        return 1;
    if (level == rtDebugLevel && (flags & RT_FLAG_DEBUG) == 0)
        return 1;
    if ((rtFlagRead(static_cast<uint32_t>(processorNumber())) & RT_FLAG_PROCESSOR) == 0)
        return 1;
    return 0;
}

int32_t CmDebgValueFromName(const RtNameValue *table, char *name) {
    OS_ASSERT(table != nullptr);
    if (name == nullptr)
        return -1;
    size_t length = std::strlen(name);
    while (length > 0 && name[length - 1] == ' ')
        name[--length] = '\0';
    for (const RtNameValue *row = table; row->name != nullptr; ++row) {
        if (strcasecmp(row->name, name) == 0)
            return static_cast<int32_t>(row->value);
    }
    return -1;
}

const char *CmDebgNameFromValue(const RtNameValue *table, uint32_t value) {
    OS_ASSERT(table != nullptr);
    for (const RtNameValue *row = table; row->name != nullptr; ++row) {
        if (row->value == value)
            return row->name;
    }
    return nullptr;
}

void CmDebgBuildHeaderFormat(void) {
    gRtHeaderWidth = gRtHeaderWidth2 = 0;
    std::memset(gRtHeaderFormat, 0, sizeof gRtHeaderFormat);
    size_t length = 0;
    for (const RtHeaderFieldRow &row : rtHeaderFieldTable) {
        const bool fixed       = (rtFlagRead(row.field) & RT_FLAG_FIXED_WIDTH) != 0;
        const char *format     = fixed ? row.fixedFormat : row.plainFormat;
        const size_t formatLen = std::strlen(format);
        std::memcpy(gRtHeaderFormat + length, format, formatLen); // fits, checked above
        length += formatLen;
        if (fixed) {
            gRtHeaderWidth += row.width;
            gRtHeaderWidth2 += row.width;
        }
    }
}

const char *CmDebgHeaderFormat(void) {
    return gRtHeaderFormat;
}

uint32_t CmDebgHeaderWidth(void) {
    return gRtHeaderWidth;
}

// gmtime_r rather than the shared gmtime result: the same breakdown, safe on
// any thread.
char *CmDebgTimeString(char *buffer) {
    const time_t seconds = time(nullptr);
    const int millis     = static_cast<int>(ClockMillis() % 1000);
    tm utc{};
    gmtime_r(&seconds, &utc);
    const size_t length = strftime(buffer, RT_TIME_STRING_SIZE, "%H.%M.%S.", &utc);
    // Three digits: the precision pads with zeros.
    snprintf(buffer + length, RT_TIME_STRING_SIZE - length, "%.3d", millis);
    return buffer;
}

void CmDebgHeaderTime(char *buffer) {
    if ((rtFlagRead(RT_HEADER_TIMESTAMP) & RT_FLAG_FIXED_WIDTH) != 0)
        CmDebgTimeString(buffer);
    else
        buffer[0] = '\0';
}

// The conversions and the two mask operations point at a stored form of the
// flags. This system keeps nothing between runs, so the masks are neither
// loaded nor saved, and the conversions stand alone.
int32_t CmDebgHexToBytes(const char *text, uint8_t *bytes, uint32_t digits) {
    for (uint32_t pair = 0; pair < digits / 2; ++pair) {
        const char *at = text + 2 * pair;
        const int high = rtHexValue(at[0]);
        if (high < 0)
            return static_cast<unsigned char>(at[0]);
        const int low = rtHexValue(at[1]);
        if (low < 0)
            return static_cast<unsigned char>(at[1]);
        bytes[pair] = static_cast<uint8_t>(high << 4 | low);
    }
    return 0;
}

int32_t CmDebgBytesToHex(const uint8_t *bytes, char *text, uint32_t count) {
    for (uint32_t i = 0; i < count; ++i) {
        text[2 * i]     = rtHexDigits[bytes[i] >> 4];
        text[2 * i + 1] = rtHexDigits[bytes[i] & 0xfu];
    }
    return 0;
}

uint32_t CmDebgHighestMarker(void) {
    for (uint32_t i = RT_CATEGORY_FLAGS_SIZE; i-- > 0;) {
        if (rtFlagRead(i) == RT_FLAG_MARKER)
            return i;
    }
    return 0;
}

int32_t CmDebgMasksLoad(void) {
    return CMDEBG_OUT_OF_BOUNDS;
}

int32_t CmDebgMasksSave(void) {
    return CMDEBG_OUT_OF_BOUNDS;
}

// LogVPrintf turns a level outside 0 to 7 into 7, as this front door must.
void CmDebgPrintf(int32_t level, uint32_t /*category*/, const char * /*text*/, const char *format,
                  ...) {
    if (format == nullptr)
        return;
    va_list arguments;
    va_start(arguments, format);
    LogVPrintf(arguments, level, nullptr, format);
    va_end(arguments);
}

int CmDebgDebugPrintf(uint32_t /*category*/, const char *format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int result = LogVPrintf(arguments, rtDebugLevel, nullptr, format);
    va_end(arguments);
    return result;
}

} // extern "C"
