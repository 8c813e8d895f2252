// The trace of pwsimd: formatting its lines and writing each in one piece.
#include "tools/pwsimd/simTrace.h"

#include "Common/OS/osAssert.h"
#include "tools/pwsimd/simDevice.h"

#include <cerrno>
#include <cstdio>
#include <unistd.h>

namespace {

bool traceOn = false;

const char *interfaceWord(int interface) {
    return interface == PW_INTERFACE_CMD ? "cmd" : "diag";
}

// Adds the length of one snprintf to `used`; the buffer is sized for the
// longest line, so a cut line is a broken constant.
void advance(std::size_t &used, int n, std::size_t size) {
    OS_ASSERT(n >= 0 && used + static_cast<std::size_t>(n) < size);
    used += static_cast<std::size_t>(n);
}

// One write for the whole line, so that a reader of the stream sees whole
// lines; a write cut short by a signal goes on with the rest.
void writeLine(const char *line, std::size_t length) {
    while (length > 0) {
        ssize_t n = write(STDERR_FILENO, line, length);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return;
        line += n;
        length -= static_cast<std::size_t>(n);
    }
}

} // namespace

void SimTraceEnable(bool on) {
    traceOn = on;
}
bool SimTraceEnabled() {
    return traceOn;
}

std::size_t SimTraceFormatMessage(char *line, std::size_t size, bool isReply, int chip,
                                  int interface, const PWMsg &msg, const char *note) {
    OS_ASSERT(size >= simTraceLineSize);
    const SimRequestKind *kind = SimRequestFind(msg.Opcode);
    std::size_t used           = 0;
    advance(used,
            std::snprintf(line, size,
                          "pwsimd: %s chip=%d if=%s op=0x%02x name=%s len=%u note=%s words=",
                          isReply ? "rep" : "req", chip, interfaceWord(interface), msg.Opcode,
                          kind != nullptr ? kind->Name : "?", msg.Length, note),
            size);
    std::size_t words = msg.Length / 2u;
    if (words == 0)
        advance(used, std::snprintf(line + used, size - used, "-"), size);
    for (std::size_t i = 0; i < words; ++i)
        advance(
            used,
            std::snprintf(line + used, size - used, "%s%04x", i == 0 ? "" : ",", msg.Payload[i]),
            size);
    advance(used, std::snprintf(line + used, size - used, "\n"), size);
    return used;
}

std::size_t SimTraceFormatSkipped(char *line, std::size_t size, int chip, int interface,
                                  std::size_t skipped) {
    std::size_t used = 0;
    advance(used,
            std::snprintf(line, size, "pwsimd: bad chip=%d if=%s skipped=%u\n", chip,
                          interfaceWord(interface), static_cast<unsigned>(skipped)),
            size);
    return used;
}

void SimTraceRequest(int chip, int interface, const PWMsg &msg) {
    if (!traceOn)
        return;
    char line[simTraceLineSize];
    writeLine(line, SimTraceFormatMessage(line, sizeof line, false, chip, interface, msg, "-"));
}

void SimTraceReply(int chip, int interface, const PWMsg &msg, const char *note) {
    if (!traceOn)
        return;
    char line[simTraceLineSize];
    writeLine(line, SimTraceFormatMessage(line, sizeof line, true, chip, interface, msg, note));
}

void SimTraceSkipped(int chip, int interface, std::size_t skipped) {
    if (!traceOn)
        return;
    char line[simTraceLineSize];
    writeLine(line, SimTraceFormatSkipped(line, sizeof line, chip, interface, skipped));
}
