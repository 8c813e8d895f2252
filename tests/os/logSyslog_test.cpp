// The program's own openlog family: it keeps values and never reaches the
// C library's syslog state.
#include "Common/OS/log.h"

#include <gtest/gtest.h>

#include <dlfcn.h>
#include <fcntl.h>
#include <string>
#include <syslog.h>
#include <unistd.h>
#include <utility>

namespace {

// What the C library's syslog writes on standard error during one call.
std::string stderrOfSyslog() {
    int pipeFds[2];
    EXPECT_EQ(pipe(pipeFds), 0);
    fflush(stderr);
    const int saved = dup(STDERR_FILENO);
    dup2(pipeFds[1], STDERR_FILENO);
    syslog(LOG_ERR, "probe %d", 1);
    fflush(stderr);
    dup2(saved, STDERR_FILENO);
    close(saved);
    close(pipeFds[1]);
    fcntl(pipeFds[0], F_SETFL, O_NONBLOCK);
    std::string text;
    char chunk[256];
    for (ssize_t n; (n = read(pipeFds[0], chunk, sizeof chunk)) > 0;)
        text.append(chunk, static_cast<std::size_t>(n));
    close(pipeFds[0]);
    return text;
}

// Each case runs in a forked child, so that the values start as a program
// finds them and nothing leaks between cases.
#define IN_CHILD(body)                                                                             \
    EXPECT_EXIT(                                                                                   \
        {                                                                                          \
            body;                                                                                  \
            std::exit(testing::Test::HasFailure() ? 1 : 0);                                        \
        },                                                                                         \
        testing::ExitedWithCode(0), "")

TEST(ProgramSyslog, StartValuesAndWhatTheSettersKeep) {
    IN_CHILD({
        EXPECT_EQ(getlogident(), nullptr);
        EXPECT_EQ(getlogoption(), 0);
        EXPECT_EQ(getlogfacility(), 8);
        EXPECT_EQ(getlogfile(12345), -1);
        EXPECT_EQ(getlogarea(), getlogarea());
        EXPECT_NE(getlogarea(), nullptr);
        // A mask of 0 is not stored; each setter answers the word before it.
        EXPECT_EQ(setlogmask(0x07), 0x1f);
        EXPECT_EQ(setlogmask(0), 0x07);
        EXPECT_EQ(setlogmask2(0x3), 0xff);
        EXPECT_EQ(setlogmask2(0), 0x3);
        EXPECT_EQ(std::pair(getlogmask(), getlogmask2()), std::pair(0x07, 0x3));

        openlog("first", 32, LOG_LOCAL0);
        // A null ident and a facility of 0 or with bits outside 0x3f8 are
        // not stored; the option always is.
        for (int facility : {0, 3, 0x400, LOG_LOCAL7 | 1}) {
            openlog(nullptr, 7, facility);
            EXPECT_STREQ(getlogident(), "first");
            EXPECT_EQ(getlogoption(), 7);
            EXPECT_EQ(getlogfacility(), LOG_LOCAL0) << facility;
        }
        openlog("second", 0, 0x3f8);
        EXPECT_EQ(getlogfacility(), 0x3f8);
        EXPECT_EQ(setlogfacility(5), 5); // stored without that test
        EXPECT_EQ(getlogfacility(), 5);
        closelog(); // no connection is ever made: nothing changes
        EXPECT_STREQ(getlogident(), "second");
    });
}

TEST(ProgramSyslog, CLibrarySyslogKeepsItsOwnDefaults) {
    IN_CHILD({
        // The tool's call: option 32 asks for a copy on standard error. The
        // C library never sees it, so its syslog writes nothing there, and a
        // mask that would drop errors does not reach it either.
        openlog("probe-ident", LOG_PERROR, 0);
        setlogmask(LOG_MASK(LOG_DEBUG));
        EXPECT_EQ(stderrOfSyslog(), "");

        // The check can fail: with the C library's own openlog in force the
        // same syslog call shows up on standard error.
        using OpenlogFn  = void (*)(const char *, int, int);
        auto libcOpenlog = reinterpret_cast<OpenlogFn>(dlsym(RTLD_NEXT, "openlog"));
        ASSERT_NE(libcOpenlog, nullptr);
        ASSERT_NE(reinterpret_cast<void *>(libcOpenlog), reinterpret_cast<void *>(&openlog));
        libcOpenlog("probe-ident", LOG_PERROR, 0);
        const std::string seen = stderrOfSyslog();
        EXPECT_NE(seen.find("probe-ident"), std::string::npos) << seen;
        EXPECT_NE(seen.find("probe 1"), std::string::npos) << seen;
    });
}

} // namespace
