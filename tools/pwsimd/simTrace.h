// The trace of pwsimd (--trace): one line on standard error for each request
// read, each reply and each run of bytes skipped on a request pipe.
//
// The line format is stable; end-to-end tests read it:
//   pwsimd: req chip=C if=IF op=0xOO name=NAME len=N note=- words=W
//   pwsimd: rep chip=C if=IF op=0xOO name=NAME len=N note=NOTE words=W
//   pwsimd: bad chip=C if=IF skipped=N
// C      chip, 0 to 2
// IF     interface of the pipe pair: cmd or diag
// OO     opcode, two lowercase hex digits
// NAME   request kind (reset, query-input, query-output, set-cable, set-mode,
//        query-version, set-aspect, set-gains, set-gains-vga), "?" if unknown
// N      payload bytes (for bad: bytes thrown away before the next sync)
// W      payload words in host order, four lowercase hex digits each,
//        comma-separated; "-" when there are none
// NOTE   "-" for a reply sent as the device gave it; else the faults that
//        shaped it joined with '+' (never, late, status0, split, crc,
//        garbage, other-if), "+full" added when there was no room for the
//        reply (its pipe or the queue of pending replies was full), or
//        "refused" for a request the device doesn't answer (unknown opcode or
//        wrong length). With never, full or refused nothing was sent.
// Every request gets one req line when it has been read whole and one rep
// line when its reply is written (the first piece of a split one), or at
// once when nothing is sent. Each line goes out in one write.
#ifndef TOOLS_PWSIMD_SIMTRACE_H
#define TOOLS_PWSIMD_SIMTRACE_H

#include "system/Pixelworks/PWApi.h"

#include <cstddef>

// Room for the longest line: 126 words of five characters, the fields and
// the longest note come to less than 800 characters.
constexpr std::size_t simTraceLineSize = 1024;

// Turns the trace on or off (off at start).
void SimTraceEnable(bool on);
bool SimTraceEnabled();

// Formats a req (isReply false) or rep line of `msg` into `line`, ending in
// a newline; returns its length.
std::size_t SimTraceFormatMessage(char *line, std::size_t size, bool isReply, int chip,
                                  int interface, const PWMsg &msg, const char *note);
// Formats a bad line; returns its length.
std::size_t SimTraceFormatSkipped(char *line, std::size_t size, int chip, int interface,
                                  std::size_t skipped);

// The same lines on standard error when the trace is on.
void SimTraceRequest(int chip, int interface, const PWMsg &msg);
void SimTraceReply(int chip, int interface, const PWMsg &msg, const char *note);
void SimTraceSkipped(int chip, int interface, std::size_t skipped);

#endif
