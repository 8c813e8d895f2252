/* Public interface of the log system (C-compatible).
 *
 * A diagnostic line comes in through a front door, is built with its level
 * word, processor column and source word, joined with earlier fragments until
 * a newline, checked for repeats, passed through the show and cull filters and
 * handed to the queue.
 *
 * Return convention of this header: each operation returns the count or value
 * its line names (a length, a number of texts, a word or flag), otherwise 0;
 * the only failure result is -1 from a filter add on a full table. Nothing
 * here fails in a way that needs a status: text that doesn't fit is cut.
 *
 * Levels are 0 to 7, numbered like the syslog severities, most severe first:
 * 0 to 2 "CRIT  ", 3 "ERROR ", 4 "WARN  ", 5 and 6 "INFO  ", 7 "DEBUG ". */
#ifndef COMMON_OS_LOG_H
#define COMMON_OS_LOG_H

#include <stdarg.h>
#include <stddef.h>
#include <stdint.h>
#include <syslog.h>

#ifdef __cplusplus
extern "C" {
#endif

#if defined(__GNUC__)
#define LOG_PRINTF_LIKE(formatIndex, firstArgument)                                                \
    __attribute__((format(printf, formatIndex, firstArgument)))
#else
#define LOG_PRINTF_LIKE(formatIndex, firstArgument)
#endif

/* ---- Log entry and line assembly ----------------------------------------
 * All of this group is callable from any thread, before the OS layer starts
 * too, but never from a signal handler (the line lock is a mutex). */

/* Size of a line built on the caller's stack, terminator included. */
#define LOG_LINE_SIZE 1024
/* Size of a held (joined) line and of the last line, terminator included. */
#define LOG_HOLD_SIZE 512
/* Smallest buffer that LogTimeStamp may be given. */
#define LOG_TIME_STAMP_SIZE 64

/* The front doors. A null source leaves the source word out; a null format
 * does nothing and returns 0. Each returns what LogVPrintf returns. */
int LogPrintf(int32_t level, const char *source, const char *format, ...) LOG_PRINTF_LIKE(3, 4);
int LogLevelPrintf(int32_t level, const char *format, ...) LOG_PRINTF_LIKE(2, 3);
int LogDebug(const char *source, const char *format, ...) LOG_PRINTF_LIKE(2, 3); /* level 7 */
int LogInfo(const char *source, const char *format, ...) LOG_PRINTF_LIKE(2, 3);  /* level 6 */
int LogWarn(const char *source, const char *format, ...) LOG_PRINTF_LIKE(2, 3);  /* level 4 */
int LogError(const char *source, const char *format, ...) LOG_PRINTF_LIKE(2, 3); /* level 3 */
int LogCrit(const char *source, const char *format, ...) LOG_PRINTF_LIKE(2, 3);  /* level 0 */

/* Builds "<level word>pc[0]: <source>: <text>" (a level outside 0..7 counts
 * as 7), joins it with held fragments until the text has a newline, and
 * passes the finished line on. Returns 0 for a null format, else the prefix
 * length plus the length the text would have had, which may exceed what was
 * kept (1023 characters on the stack, 511 in a joined line). */
int LogVPrintf(va_list arguments, int32_t level, const char *source, const char *format)
    LOG_PRINTF_LIKE(4, 0);

/* Copies the six-character word of `level` (below 0 counts as 0, above 7 as
 * 7) with its terminator to `buffer` (7 characters); returns 6. */
int LogLevelWord(int32_t level, char *buffer);
/* Writes the processor column "pc[%x]: " to `buffer` (at least 16
 * characters); returns its length, 7. */
int LogProcPrefix(char *buffer);
/* The number of the processor the code runs on: always 0 in this system. */
int32_t processorNumber(void);
/* With repeat suppression on, tells whether `line` equals the last line and
 * must not go on (1) or not (0); before a different line it reports the
 * suppressed repeats. Only for LogVPrintf, which calls it under its line
 * lock; it is not meant for other callers. */
int LogCheckRepeat(const char *line);
/* Writes the date and time prefix chosen by bits 1 and 2 of the format word
 * (UTC, "YYYY-MM-DD HH:MM:SS.mmm " with both) to `buffer`, which holds at
 * least LOG_TIME_STAMP_SIZE characters; returns its length, 0 when neither
 * bit is set. Called by the writer task. */
int LogTimeStamp(char *buffer);

/* ---- Filters, format and flags ------------------------------------------
 * No lock guards these settings: each change is one word or one character.
 * Change them from one configuring thread; readers on other threads see a
 * change at the next line. */

/* Number of slots in each filter table and their width with terminator. */
#define LOG_FILTER_SLOTS 10
#define LOG_FILTER_WIDTH 370

/* Bits of the format word. */
#define LOG_FORMAT_DATE 1u  /* "date": LogTimeStamp writes the date */
#define LOG_FORMAT_TIME 2u  /* "time": LogTimeStamp writes the time */
#define LOG_FORMAT_LEVEL 4u /* "level": the writer prints the level word */
#define LOG_FORMAT_PROC 8u  /* "proc": held, listed and stored */
/* Size of the buffer of LogFormatWords. */
#define LOG_FORMAT_WORDS_SIZE 256

/* Loads the settings at the first non-empty line, then applies the show and
 * cull filters and hands the line to LogEnqueue. Returns `length` when the
 * line went on, 0 when it was empty or dropped. Any thread. */
int LogFilterLine(const char *line, int length);

/* Show filters: a line passes only if it holds one of them (when there are
 * any). Cull filters: a line that holds one of them is dropped. Both compare
 * case-sensitively with the whole line, prefix included. Any thread, see
 * above. */
/* Puts `text` (cut to 369 characters) into the first free slot; returns 0, or
 * -1 with a message on standard output when the table is full. */
int LogShowAdd(const char *text);
int LogCullAdd(const char *text);
/* Frees the first slot equal to `text` ignoring case, or every slot for "*";
 * prints a message on standard output when none matches. Returns 0. */
int LogShowRemove(const char *text);
int LogCullRemove(const char *text);
/* Prints the table on standard output. Returns 0. */
int LogShowList(void);
int LogCullList(void);
/* Writes all ten slots to the settings store. Returns 0. */
int LogShowSave(void);
int LogCullSave(void);
/* Adds the stored texts behind the ones in the table; returns how many. */
int LogShowLoad(void);
int LogCullLoad(void);

/* The format word, as bits above. Any thread. */
int LogSetFormat(uint32_t word);
uint32_t LogGetFormat(void);
/* Writes the words of the set bits, each followed by a blank, in the order
 * "date time level proc", to `buffer` (LOG_FORMAT_WORDS_SIZE). Returns 0. */
int LogFormatWords(uint32_t word, char *buffer);
/* Prints the words of the format word and a newline. Returns 0. */
int LogFormatList(void);
/* Stores the words under "logformat". Returns 0. */
int LogFormatSave(void);
/* Sets the format word from the stored words (none read: 0). Returns 0. */
int LogFormatLoad(void);

/* Repeat suppression: sets the flag and stores it under "spewfilter". */
int LogSetSpewFilter(int32_t flag);
int32_t LogGetSpewFilter(void);
/* Sets the flag from the store ("True" in any case: on); a failed read
 * leaves it. Returns 0. */
int LogSpewFilterLoad(void);
/* Forwarding of printed lines to the C library's syslog; not stored. */
int LogSetForward(int32_t flag);
int32_t LogGetForward(void);

/* ---- Queue and writer task ----------------------------------------------
 * A finished line is copied into a ring of 512 KiB; the task "logw" prints
 * it on standard output (level word when the "level" bit is set, processor
 * column, text, after the time prefix) and passes it to syslog when
 * forwarding is on. A line that finds the ring full is dropped, and the
 * overflow line "WARN   pc[0]: SYSLOG QUEUE OVERFLOW" goes to standard error
 * and, when it fits, into the ring in its place. */

/* Starts the writer: empties the ring, creates its semaphore and the task
 * "logw" at priority 0; a failure is logged at level 0. Once, at OS start,
 * from the thread that starts the layer. */
void LogWriterStart(void);
/* Sets the highest severity (see LogLevelFromLetter) that is queued; 7 at
 * start. Any thread. */
void LogSetThreshold(int32_t severity);
/* Queues a finished line for the writer task. Until the writer has been
 * started every line is dropped; `length` is not used. Any thread, never
 * from a signal handler. */
void LogEnqueue(const char *line, int length);
/* Prints the lines of the ring until it is empty. The writer task's own
 * step: only from the writer. */
void LogDrain(void);
/* The body of the task "logw": waits for event bit 0 and drains, forever. */
void LogWriterTask(void);
/* Waits until the writer has printed what was queued before the call (a
 * drain has left the ring empty), then flushes standard output; returns at
 * once when no writer runs. For a program that is about to end. Any thread
 * but the writer; a cancellation point. */
void LogWriterSync(void);
/* The severity of a line from its first letter: 'C' 2, 'E' 3, 'W' 4, 'I' 6,
 * any other 7. Any thread. */
int32_t LogLevelFromLetter(char letter);

/* Copies at most `limit` characters of `source` to `destination` (limit + 1
 * characters), each '%' replaced by '$', and terminates it; returns
 * `destination`. Any thread. */
char *logEscapePercent(char *destination, const char *source, size_t limit);
/* Replaces each `oldChar` by `newChar` within the first `limit` characters
 * of `text`, in place; stops at the terminator. Any thread. */
void logReplaceChar(char *text, char oldChar, char newChar, size_t limit);

/* ---- System-log names ---------------------------------------------------
 * The program defines openlog, closelog and setlogmask itself, with the
 * signatures <syslog.h> gives them, so that within the program they stand in
 * front of the C library's. They and the siblings below only keep values:
 * the C library's syslog keeps its own ident, option, facility and mask,
 * which none of them reaches. Start values: facility 8, mask 0x1f, second
 * mask 0xff, no ident, option 0. */

/* Stores a mask that is not 0 as the second mask word; returns the word
 * before the call. */
int setlogmask2(int mask);
int getlogmask(void);
int getlogmask2(void);
/* Stores `facility` as it stands (openlog stores only a non-zero facility
 * with no bit outside 0x3f8); returns it. */
int setlogfacility(int facility);
int getlogfacility(void);
/* There is no log file of the program's own: always -1. */
int getlogfile(int unused);
/* The address of a static block of the log layer that nothing else touches. */
void *getlogarea(void);
/* The ident and option word of the last openlog (null and 0 before one). */
const char *getlogident(void);
int getlogoption(void);

#ifdef __cplusplus
}
#endif

#endif
