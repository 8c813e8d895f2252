// The settings store: the three operations over the store in place, which in
// this system is one that keeps nothing.
#include "Common/OS/settings.h"

#include "Common/OS/settingsStore.h"

#include <atomic>

namespace {

// The system's store keeps nothing. A read finds nothing: the buffer is left
// empty and the result says so (SETTINGS_NOT_STORED, -25: nothing is stored
// under this key and index). Writes are accepted and forgotten, so every
// setting stays at its start value until it is changed at run time.
int32_t settingsNoneRead(const char *, int32_t, char *buffer) {
    if (buffer != nullptr)
        buffer[0] = '\0';
    return SETTINGS_NOT_STORED;
}

int32_t settingsNoneWriteText(const char *, int32_t, const char *) {
    return 0;
}
int32_t settingsNoneWriteFlag(const char *, int32_t, int32_t) {
    return 0;
}

constexpr SettingsStore settingsNone{settingsNoneRead, settingsNoneWriteText,
                                     settingsNoneWriteFlag};

std::atomic<const SettingsStore *> settingsStore{nullptr};

const SettingsStore &settingsCurrent() {
    const SettingsStore *s = settingsStore.load(std::memory_order_acquire);
    return s != nullptr ? *s : settingsNone;
}

} // namespace

const SettingsStore *SettingsStoreSet(const SettingsStore *store) {
    return settingsStore.exchange(store, std::memory_order_acq_rel);
}

extern "C" {

int32_t SettingsReadText(const char *key, int32_t index, char *buffer) {
    return settingsCurrent().readText(key, index, buffer);
}

int32_t SettingsWriteText(const char *key, int32_t index, const char *text) {
    return settingsCurrent().writeText(key, index, text);
}

int32_t SettingsWriteFlag(const char *key, int32_t index, int32_t flag) {
    return settingsCurrent().writeFlag(key, index, flag);
}

} // extern "C"
