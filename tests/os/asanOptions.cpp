// Options that AddressSanitizer reads at start-up, for the test programs
// whose threads are cancelled: its handling of a cancelled thread (the
// landing pads, the thread's end) calls sigaltstack on stack that the
// unwinding left marked as guard zones, and reports an overflow. Without the
// alternate signal stack it doesn't.
extern "C" const char *__asan_default_options() {
    return "use_sigaltstack=0";
}
