/* Public interface of the trace categories (C-compatible): the fixed table of
 * 123 numbered categories, one flag byte per category that says whether its
 * output is listened to and whether its debug output is on, the pieces of a
 * trace header (format text, time text, level letters, field names) and the
 * look-ups and conversions that go with them.
 *
 * Return convention of this header: operations return 0 on success, or
 * CMDEBG_OUT_OF_BOUNDS (-3) for a category beyond the table and for the
 * stored form of the flags, which this system doesn't have. Look-ups return
 * what they find or their "none": category 0, value -1, a null name. The hex
 * reader returns the code of the first bad character. Nothing here prints for
 * a failed look-up; a caller's error (a null table, a flag index beyond the
 * flags) is a fatal assertion.
 *
 * No lock guards the flags: each change is one atomic read-modify-write of
 * one byte, and readers see the byte before or after it. */
#ifndef COMMON_OS_SYSLOGF_H
#define COMMON_OS_SYSLOGF_H

#include "Common/OS/log.h"

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Tables ---------------------------------------------------------------
 * A row of three words: a name, its value and a text. The look-ups by name
 * and by value take any table of such rows that ends with a null name. */
typedef struct RtNameValue {
    const char *name;
    uint32_t value;
    const char *text; /* a category's description, a trace command, or null */
} RtNameValue;

/* Number of categories; they are numbered 0 to RT_CATEGORY_COUNT - 1. */
#define RT_CATEGORY_COUNT 123
/* Longest category name: group in columns 0 to 4, subgroup in 5 to 9, item
 * in 10 to 13, each blank-padded where another field follows. */
#define RT_CATEGORY_NAME_MAX 14

/* The categories, row i with value i, then the end row (null name, 0, null).
 * Row 0 is "(NOCAT)", uncategorised output. */
extern const RtNameValue gRtCategoryLut[RT_CATEGORY_COUNT + 1];

/* The flag bytes. Each bit has its own meaning of the index. */
#define RT_CATEGORY_FLAGS_SIZE 192
#define RT_FLAG_DEBUG 0x01u       /* index a category: its level 7 lines pass */
#define RT_FLAG_LISTEN 0x02u      /* index a category: its lines pass at all */
#define RT_FLAG_FIXED_WIDTH 0x04u /* index a header field: it has its fixed width */
#define RT_FLAG_PROCESSOR 0x10u   /* index a processor: its lines pass */
/* Marker entries behind the last category, all eight bits set by CmDebgInit. */
#define RT_FLAG_MARKER 0xffu
#define RT_MARKER_FIRST 124
#define RT_MARKER_LAST 125

/* Before CmDebgInit entry 0 holds 0x0f and all others 0, so every line is
 * dropped. Written by CmDebgInit, CmDebgCategoryEnable and
 * CmDebgCategoryDisable; a program may set the header-field bits itself. */
extern uint8_t gRtCategoryFlags[RT_CATEGORY_FLAGS_SIZE];

/* Header fields, in the order of their flag index, and their count. */
#define RT_HEADER_TIMESTAMP 0
#define RT_HEADER_LOGLEVEL 1
#define RT_HEADER_CATEGORY 2
#define RT_HEADER_ID 3
#define RT_HEADER_FIELDS 4
/* Capacity of the header format text, terminator included. */
#define RT_HEADER_FORMAT_SIZE 40
/* Smallest buffer that CmDebgTimeString may be given. */
#define RT_TIME_STRING_SIZE 28

/* The vocabulary of trace headers and commands. Nothing in this system reads
 * them, and the library prints no trace line with a header: a program that
 * wants one asks CmDebgIsFiltered with the line's level and category, then
 * fills CmDebgHeaderFormat's three fields with the time text, the level
 * letter and the category name. */
/* One letter per level 0 to 7. */
extern const char *const gRtLevelLetters[8];
/* The names of the header fields, then an empty text as the end. */
extern const char *const gRtHeaderFields[RT_HEADER_FIELDS + 1];
/* The default trace commands (module, value, command), ended by a null row. */
extern const RtNameValue gRtDefaultCommands[5];
/* The summary of the defaults, then a row whose name is an empty text. These
 * two tables end with an empty name, not a null one: don't give them to the
 * look-ups by name or value. */
extern const RtNameValue gRtDefaultSummary[2];
/* Two content rows, each followed by a row with an empty name and zeros. */
extern const RtNameValue gRtContentRows[2][2];

/* ---- Operations ------------------------------------------------------------ */

/* Result of an operation on a category beyond the table, and of the stored
 * form of the flags. */
#define CMDEBG_OUT_OF_BOUNDS (-3)

/* Resets the flags to the defaults: every category listened to, debug on for
 * the default categories only, processor 0 passing, the two markers set, no
 * header field of fixed width; then rebuilds the header format. Returns 0.
 * At start (OS start runs it) before other threads use the flags; it can run
 * again. */
int32_t CmDebgInit(void);
/* Turns on listening and debug for `category`. 0, or CMDEBG_OUT_OF_BOUNDS
 * with an ERROR line when it is beyond the table. Any thread. */
int32_t CmDebgCategoryEnable(uint32_t category);
/* Turns off debug only; the category stays listened to, so its lines of
 * levels 0 to 6 still pass. 0, or CMDEBG_OUT_OF_BOUNDS with an ERROR line.
 * Any thread. */
int32_t CmDebgCategoryDisable(uint32_t category);
/* The category whose 14-character name is the three words cut or padded to
 * their fields (5, 5 and 4 columns): only full three-field names can match.
 * 0 when none does or a word is null. Any thread. */
uint32_t CmDebgCategoryFromStrings(const char *group, const char *subgroup, const char *item);
/* 1 when a line of `level` and `category` (an index below
 * RT_CATEGORY_FLAGS_SIZE) is dropped, 0 when it passes. Any thread. */
int32_t CmDebgIsFiltered(int32_t level, uint32_t category);
/* Removes the trailing blanks of `name` in place, then returns the value of
 * the first row whose name equals it ignoring case; -1 when none does or
 * `name` is null. Any thread. */
int32_t CmDebgValueFromName(const RtNameValue *table, char *name);
/* The name of the first row with `value`, or null. Any thread. */
const char *CmDebgNameFromValue(const RtNameValue *table, uint32_t value);

/* Rebuilds the header format from the fixed-width bits of the header fields
 * and sums the fixed widths. At start, with the flags. */
void CmDebgBuildHeaderFormat(void);
/* The header format, "%s%s%s" when no field has its fixed width, and the sum
 * of the fixed widths (30 with all three). Any thread. */
const char *CmDebgHeaderFormat(void);
uint32_t CmDebgHeaderWidth(void);
/* Writes "HH.MM.SS.mmm" to `buffer` (RT_TIME_STRING_SIZE characters): the
 * time of day in UTC and the millisecond counter modulo 1000, which doesn't
 * turn over with the seconds. Returns `buffer`. Any thread. */
char *CmDebgTimeString(char *buffer);
/* The time text when the time stamp field has its fixed width, else an empty
 * text. Any thread. */
void CmDebgHeaderTime(char *buffer);

/* Converts `digits` / 2 pairs of upper-case hexadecimal digits to bytes, high
 * half first; a last odd digit is not read. Stops at the first other
 * character and returns its code (0 for a terminator), leaving the bytes of
 * earlier pairs written; otherwise returns 0. Any thread. */
int32_t CmDebgHexToBytes(const char *text, uint8_t *bytes, uint32_t digits);
/* Writes two upper-case hexadecimal digits per byte, high half first, and no
 * terminator. Returns 0. Any thread. */
int32_t CmDebgBytesToHex(const uint8_t *bytes, char *text, uint32_t count);
/* The highest flag index whose entry is RT_FLAG_MARKER, or 0. Any thread. */
uint32_t CmDebgHighestMarker(void);
/* The flags have no stored form here: both return CMDEBG_OUT_OF_BOUNDS and
 * change nothing. Any thread. */
int32_t CmDebgMasksLoad(void);
int32_t CmDebgMasksSave(void);

/* Front doors of the log: the line goes to LogVPrintf with no source word.
 * The category and `text` don't appear in it and CmDebgIsFiltered is not
 * asked; only the log's own filters apply. A null format does nothing. A
 * level outside 0 to 7 counts as 7. Any thread. */
void CmDebgPrintf(int32_t level, uint32_t category, const char *text, const char *format, ...)
    LOG_PRINTF_LIKE(4, 5);
/* At level 7; `category` plays no part. Returns what LogVPrintf returns. */
int CmDebgDebugPrintf(uint32_t category, const char *format, ...) LOG_PRINTF_LIKE(2, 3);

#ifdef __cplusplus
}
#endif

#endif
