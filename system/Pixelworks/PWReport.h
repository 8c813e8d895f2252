// Reports of the link. They go to the system log (syslog) in the product;
// tests put a hook in place to see each report's priority and text.
#ifndef SYSTEM_PIXELWORKS_PWREPORT_H
#define SYSTEM_PIXELWORKS_PWREPORT_H

// Receives one formatted report. The text is valid during the call only.
using PWReportHook = void (*)(int priority, const char *text);

// Reports through the hook if one is set, else through vsyslog.
void PWReport(int priority, const char *format, ...) __attribute__((format(printf, 2, 3)));

// Sets the hook (null: syslog again); returns the previous one.
PWReportHook PWReportSetHook(PWReportHook hook);

#endif
