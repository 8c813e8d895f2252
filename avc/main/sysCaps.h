/* Public interface of the system capability tables: named values per hardware model, by category,
 * key and index (C-compatible).
 *
 * Return convention of this header: SysCapsSet answers 0, or -1 when the category or the row
 * doesn't exist; SysCapsGet answers the row's value word, or 0 when the category or the row doesn't
 * exist (0 is also the value of many rows); the other lookups answer a row, a block or a word, or
 * NULL for none. Nothing here prints; a SysType without tables at the first access is a fatal
 * assertion.
 * There is no lock: make the first access (which selects the table set) during start-up, before
 * other threads use the tables. After that every operation is callable from any thread, but
 * SysCapsSet must not run while another thread reads the same row. */
#ifndef AVC_MAIN_SYSCAPS_H
#define AVC_MAIN_SYSCAPS_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Category numbers (SysCapsCategory). Category 4 has no word. */
typedef uint32_t SysCapsCategory;
#define SYS_CAPS_VIDEO 0u    /* "video": video DSPs, HDAM board, video chips and their gains */
#define SYS_CAPS_AUDIO 1u    /* "audio": audio DSPs */
#define SYS_CAPS_COMM 2u     /* "comm": conference and connection limits, NICs, rates */
#define SYS_CAPS_HARDWARE 3u /* "hardware": processors, fan, monitors, cameras, flash, clock */
#define SYS_CAPS_CAT4 4u     /* the single key amxRevision */

/* The three row formats, with a blank on both sides; SysCapsGet prints a value with them. */
#define SYS_CAPS_FMT_INT " %d "
#define SYS_CAPS_FMT_TEXT " %s "
#define SYS_CAPS_FMT_FLOAT " %f "

/* Bytes a SysCapsGet text buffer must hold: the longest value prints as 58 characters (a FanConfig
 * text of 56 and the two blanks), plus the terminating zero. Longer texts are cut to fit. */
#define SYS_CAPS_TEXT_SIZE 59u

/* A value word: a signed number, or the address of a constant text or of a float, as the row's
 * format says. It is an intptr_t because it must carry an address, and an address is 64 bits wide
 * on a 64-bit host; on the 32-bit appliance it is the 32-bit word itself. */
typedef intptr_t SysCapsWord;

/* The value held by a row; the member in use is the one that the row's Format names. */
typedef union SysCapsValue {
    intptr_t Number;   /* " %d " */
    const char *Text;  /* " %s " */
    const float *Real; /* " %f " */
} SysCapsValue;

/* One row of a category table or of a block. A table ends with a row whose Key is NULL. */
typedef struct SysCapsRow {
    const char *Key;
    SysCapsValue Value;
    int32_t Index; /* tells apart rows of one key; 0 for a key with a single value */
    const char *Format;
} SysCapsRow;

/* Selects the table set of `sysType` and patches it for the HDAM board (SysCapsApplyBoard).
 * A type without a table set stops the process. Called by the first SysCapsGet or SysCapsSet. */
void initSysCapsTbl(int32_t sysType);
/* The row of `table` whose Key equals `key` (case-sensitive) and whose Index equals `index`, or
 * NULL. A NULL key or table finds nothing. Any thread. */
SysCapsRow *SysCapsFind(const char *key, int32_t index, SysCapsRow *table);
/* Stores `value` in the row of `category`, `key` and `index` of the selected table set. 0, or -1
 * when the category is above 4 or there is no such row. The row's format stays: pass a word of
 * the kind the row holds. Selects the table set at the first access. */
int32_t SysCapsSet(SysCapsCategory category, const char *key, int32_t index, SysCapsWord value);
/* The value word of the row of `category`, `key` and `index` (a number, or the address of a text
 * for " %s " rows), or 0 when there is none. When `buffer` is not NULL the value is also printed
 * into it with the row's format (SYS_CAPS_TEXT_SIZE bytes); a missing row leaves it alone.
 * Selects the table set at the first access. */
SysCapsWord SysCapsGet(SysCapsCategory category, const char *key, int32_t index, char *buffer);
/* "video", "audio", "comm" or "hardware" for categories 0 to 3, else NULL. Any thread. */
const char *SysCapsCategoryName(SysCapsCategory category);
/* SysCapsSet(category, row.Key, row.Index, row.Value) for each row of `block`, in order; rows
 * without a match are skipped. A NULL block does nothing. */
void SysCapsApplyBlock(SysCapsCategory category, const SysCapsRow *block);
/* Writes the board number of the environment into HdamBoardType and applies the override block of
 * that board, the hardware family and `sysType` to category 0. Run once by initSysCapsTbl. */
void SysCapsApplyBoard(int32_t sysType);
/* The block of eight connRate rows (category 2) for a rate and two flags; changes nothing. The
 * first argument is not read. Any thread. */
const SysCapsRow *SysCapsConnRateBlock(int32_t unused, int32_t rate, int32_t flagA, int32_t flagB);

#ifdef __cplusplus
}
#endif

#endif
