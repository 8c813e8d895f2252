/* The project's fatal assertion: stays active in release builds. */
#ifndef COMMON_OS_OSASSERT_H
#define COMMON_OS_OSASSERT_H

#ifdef __cplusplus
extern "C" {
#endif

/* Prints "<file>:<line>: <function>: Assertion `<expression>' failed." on
 * standard error and aborts. Never returns. Callable from any thread. */
void OsAssertFail(const char *expression, const char *file, int line, const char *function)
    __attribute__((noreturn));

#ifdef __cplusplus
}
#endif

/* A caller's error or a broken constant: fatal in every build. Bad user
 * input never goes through here; it gets its own message. */
#define OS_ASSERT(expression)                                                                      \
    ((expression) ? (void)0 : OsAssertFail(#expression, __FILE__, __LINE__, __func__))

#endif
