// Test helper: sets or unsets an environment variable for one scope and puts the old state back.
#ifndef TESTS_AVC_SYSTYPEENVGUARD_H
#define TESTS_AVC_SYSTYPEENVGUARD_H

#include <cstdlib>
#include <optional>
#include <string>

class ScopedEnv {
  public:
    // A null value unsets the variable.
    ScopedEnv(const char *name, const char *value) : name_(name) {
        if (const char *old = std::getenv(name)) {
            old_ = old;
        }
        Set(value);
    }
    ~ScopedEnv() { Set(old_ ? old_->c_str() : nullptr); }
    ScopedEnv(const ScopedEnv &)            = delete;
    ScopedEnv &operator=(const ScopedEnv &) = delete;
    void Set(const char *value) {
        value ? setenv(name_.c_str(), value, 1) : unsetenv(name_.c_str());
    }

  private:
    std::string name_;
    std::optional<std::string> old_;
};

#endif
