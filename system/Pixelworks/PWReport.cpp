// Reports of the link: vsyslog in the product, a hook for tests.
#include "system/Pixelworks/PWReport.h"

#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <syslog.h>

namespace {
std::atomic<PWReportHook> reportHook{nullptr};
} // namespace

void PWReport(int priority, const char *format, ...) {
    va_list args;
    va_start(args, format);
    PWReportHook hook = reportHook.load(std::memory_order_acquire);
    if (hook == nullptr) {
        vsyslog(priority, format, args);
    } else {
        // The longest report, a pipe path and an errno text, fits easily.
        char text[256];
        std::vsnprintf(text, sizeof text, format, args);
        hook(priority, text);
    }
    va_end(args);
}

PWReportHook PWReportSetHook(PWReportHook hook) {
    return reportHook.exchange(hook, std::memory_order_acq_rel);
}
