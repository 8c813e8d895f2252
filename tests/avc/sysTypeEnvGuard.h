// Test helper: sets or unsets an environment variable for one scope and puts the old state back.
#ifndef TESTS_AVC_SYSTYPEENVGUARD_H
#define TESTS_AVC_SYSTYPEENVGUARD_H

#include <cstdlib>
#include <optional>
#include <string>

class ScopedEnv {
  public:
    // value nullptr unsets the variable for the scope.
    ScopedEnv(const char *name, const char *value) : name_(name) {
        if (const char *old = std::getenv(name)) {
            old_ = old;
        }
        Apply(value);
    }
    ~ScopedEnv() { Apply(old_ ? old_->c_str() : nullptr); }
    ScopedEnv(const ScopedEnv &)            = delete;
    ScopedEnv &operator=(const ScopedEnv &) = delete;

    void Set(const char *value) { Apply(value); }

  private:
    void Apply(const char *value) {
        if (value == nullptr) {
            unsetenv(name_.c_str());
        } else {
            setenv(name_.c_str(), value, 1);
        }
    }

    std::string name_;
    std::optional<std::string> old_;
};

#endif
