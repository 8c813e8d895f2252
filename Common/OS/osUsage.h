/* Public interface of the processor usage report (C-compatible): how much of
 * the processor each task, the process "jvm" and all other processes have
 * used since the last report, and what was left as idle.
 *
 * Return convention of this header: the operations return nothing; the
 * report is their output, on standard output. A task or process whose /proc
 * file can't be read is left out silently.
 *
 * Thread context: any thread, task or not, one report at a time; two reports
 * at once are a caller's error and fatal. Never from a timer callback or a
 * signal handler. */
#ifndef COMMON_OS_OSUSAGE_H
#define COMMON_OS_OSUSAGE_H

#ifdef __cplusplus
extern "C" {
#endif

/* Prints the table of usage since the last report: one row per task that
 * used the processor, then the rows of t_usage_others. The first report
 * measures from 1970 and so shows only idle at 100.0. Any thread. */
void t_usage(void);
/* Prints the rows that follow the tasks: the process "jvm", all other
 * processes as one row, and idle; measured over the interval of the last
 * t_usage. Called by t_usage; any thread, as t_usage. */
void t_usage_others(void);

#ifdef __cplusplus
}
#endif

#endif
