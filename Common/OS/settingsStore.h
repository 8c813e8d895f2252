// Where the settings operations keep their values. The store of this system
// keeps nothing; tests put a store of their own in place to drive the log
// system's loads with stored texts.
#ifndef COMMON_OS_SETTINGSSTORE_H
#define COMMON_OS_SETTINGSSTORE_H

#include <cstdint>

struct SettingsStore {
    int32_t (*readText)(const char *key, int32_t index, char *buffer);
    int32_t (*writeText)(const char *key, int32_t index, const char *text);
    int32_t (*writeFlag)(const char *key, int32_t index, int32_t flag);
};

// Puts `store` in place (null: the system's, which keeps nothing) and returns
// the previous one (null when the system's was in place). Tests call it while
// no other thread uses the settings.
const SettingsStore *SettingsStoreSet(const SettingsStore *store);

#endif
