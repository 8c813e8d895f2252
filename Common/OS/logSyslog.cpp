// The program's own openlog, closelog and setlogmask, with their sibling
// accessors. Linked into a program, they stand in front of the C library's
// functions of the same names and only keep values: the C library's syslog
// keeps its own ident, option, facility and mask, which these never reach.
#include "Common/OS/log.h"

#include <syslog.h>

namespace {

// Start values; nothing in the system reads them to decide anything.
const char *logIdent       = nullptr;
int logOption              = 0;
int logFacility            = 8;    // LOG_USER
int logMask                = 0x1f; // severities 0 to 4
int logMask2               = 0xff;
int logFile                = -1;
int logConnected           = 0; // nothing ever sets it
constexpr int facilityBits = 0x3f8;

// A block of the log layer whose address getlogarea hands out; nothing
// else touches it.
unsigned char logArea[64];

} // namespace

extern "C" {

void openlog(const char *ident, int option, int facility) {
    if (ident != nullptr)
        logIdent = ident;
    logOption = option;
    if (facility != 0 && (facility & ~facilityBits) == 0)
        logFacility = facility;
}

void closelog(void) {
    if (logConnected) {
        logFile      = -1;
        logConnected = 0;
    }
}

int setlogmask(int mask) noexcept {
    int before = logMask;
    if (mask != 0)
        logMask = mask;
    return before;
}

int setlogmask2(int mask) {
    int before = logMask2;
    if (mask != 0)
        logMask2 = mask;
    return before;
}

int getlogmask(void) {
    return logMask;
}
int getlogmask2(void) {
    return logMask2;
}

int setlogfacility(int facility) {
    logFacility = facility;
    return facility;
}

int getlogfacility(void) {
    return logFacility;
}
int getlogfile(int) {
    return -1;
}
void *getlogarea(void) {
    return logArea;
}
const char *getlogident(void) {
    return logIdent;
}
int getlogoption(void) {
    return logOption;
}

} // extern "C"
