// Test helper: sets or unsets an environment variable for one scope and puts the old state back.
#ifndef TESTS_AVC_SYSTYPEENVGUARD_H
#define TESTS_AVC_SYSTYPEENVGUARD_H

#include <cstdlib>
#include <optional>
#include <string>

struct ScopedEnv {
    std::string name;
    std::optional<std::string> old;
    ScopedEnv(const char *n, const char *value) : name(n) {
        if (const char *was = std::getenv(n))
            old = was;
        Set(value);
    }
    ~ScopedEnv() { Set(old ? old->c_str() : nullptr); }
    // A null value unsets the variable.
    void Set(const char *value) { value ? setenv(name.c_str(), value, 1) : unsetenv(name.c_str()); }
};

#endif
