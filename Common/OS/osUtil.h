/* Public interface of the OS layer's small services (C-compatible): the
 * interrupt lock, the back-trace stubs, the information words, text
 * functions, the shell-command launcher and the process helpers.
 *
 * Return convention of this header: each operation returns what it names:
 * a count, a word, the text it was given (changed in place), a process id,
 * or 0 for success; -1 (or null for intToText) says it failed. Bad input
 * (an unset variable, a text too long for a buffer) is such a failure and
 * never asserts; a null text or buffer is a caller's error and is fatal.
 *
 * Thread context is given per operation. None of them may be called from a
 * signal handler. A blank, to the text functions, is a character whose code,
 * taken unsigned, is 32 or below. */
#ifndef COMMON_OS_OSUTIL_H
#define COMMON_OS_OSUTIL_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The request path of the shell-command launcher, and the default path that
 * its peer, plaunchd, serves. */
#define OS_LAUNCH_PATH "/tmp/plaunch"

/* The longest answer line the launcher reads, in characters. */
#define OS_LAUNCH_ANSWER_MAX 127

/* ---- Interrupt lock ----------------------------------------------------------
 * One process-wide recursive lock in place of switching interrupts off: it
 * stops only other callers of interruptsOff. Nesting within one thread needs
 * the lock's final attributes (the OS start). Misuse is logged at LogWarn
 * under the source word "os" and the operation goes on. */

/* Takes the lock; the new depth, which the caller hands back to its own
 * interruptsRestore. Any thread; sections close in reverse order. */
int32_t interruptsOff(void);
/* Gives the lock back; the result of the release (0, or the error number).
 * The thread that called interruptsOff, with that call's result. */
int32_t interruptsRestore(int32_t oldie);

/* ---- Back traces and information words ------------------------------------ */

/* Print that they are not implemented; the task id is not read. Any thread. */
void stackBackTrace(uint32_t taskId);
void sstackBackTrace(uint32_t taskId);
/* The four information words: 1, 0, 0, 0. Nothing in the system writes
 * them. Any thread. */
uint32_t osInfoWord1(void);
uint32_t osInfoWord2(void);
uint32_t osInfoWord3(void);
uint32_t osInfoWord4(void);

/* ---- Text ----------------------------------------------------------------------
 * All change the text in place and return it. Any thread, on texts that no
 * other thread uses. */

/* Moves the text behind its leading blanks to the start. */
char *trimLeft(char *text);
/* Cuts the trailing blanks. */
char *trimRight(char *text);
/* trimLeft, then trimRight. */
char *trimBoth(char *text);
/* Each character through tolower, or toupper. */
char *lowerCase(char *text);
char *upperCase(char *text);
/* strcmp of upper-case copies of the first 255 characters of each text:
 * below, equal to or above 0. Any thread. */
int compareNoCase(const char *a, const char *b);
/* Prints `value` into `buffer` (at least 12 characters) with "%d" for base
 * 10 or "%x" for base 16; the buffer, or null for any other base, which
 * leaves the buffer alone. Any thread. */
char *intToText(int32_t value, char *buffer, int32_t base);

/* ---- Launcher and processes ------------------------------------------------ */

/* Has the peer at OS_LAUNCH_PATH run `command` with the shell, one request
 * of this process at a time: the number at the start of the peer's answer,
 * or -1 when the path can't be used or there was no answer. Logged under
 * the source word "system_pthread", "command [result]" at LogInfo or
 * "command [errno text]" at LogError. Waits for the peer as long as it
 * takes. Any thread; never from a timer callback. */
int32_t systemLaunch(const char *command);
/* The id of the first process in /proc whose name is exactly `name`, or -1
 * (with "could not open /proc" printed when /proc can't be read). Any
 * thread. */
int32_t findProcess(const char *name);
/* Runs `command` with popen and puts the first line of its output, at most
 * size - 1 characters, through trimBoth into `buffer`. 0, or -1 when the
 * command couldn't be started or printed nothing (the buffer is then
 * empty). `size` is at least 1. Any thread. */
int32_t commandLine(const char *command, char *buffer, int32_t size);
/* Copies the value of the environment variable `name` with its terminator
 * into `buffer`. 0, or -1 when it is unset or has `size` characters or more;
 * the buffer is then left alone. Any thread that doesn't change the
 * environment at the same time. */
int32_t envCopy(const char *name, char *buffer, int32_t size);
/* -1 when the root file system is mounted over NFS, 0 when not or when that
 * can't be told. Asks `mount` once per process. Any thread. */
int32_t isNfsRoot(void);

#ifdef __cplusplus
}
#endif

#endif
