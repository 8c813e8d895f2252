/* Public interface of the settings store (C-compatible): texts and flags by
 * key and index, as the log system reads and writes its four keys.
 *
 * Return convention of this header: 0 on success; a read that finds nothing
 * returns a negative number and leaves an empty text. The store of this
 * system keeps nothing: every read finds nothing and every write is accepted
 * and forgotten. All operations are callable from any thread. */
#ifndef COMMON_OS_SETTINGS_H
#define COMMON_OS_SETTINGS_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Result of a read that finds nothing stored under the key and index. */
#define SETTINGS_NOT_STORED (-25)

/* Writes the text stored under `key` and `index`, with its terminator, to
 * `buffer` (when not null), or an empty text when nothing is stored. The
 * buffer gets no size: a store keeps within 256 characters for "logformat",
 * 370 for "showfilter" and "cullfilter", 384 for "spewfilter". Returns 0 or
 * SETTINGS_NOT_STORED. */
int32_t SettingsReadText(const char *key, int32_t index, char *buffer);
/* Stores `text` under `key` and `index`. Returns 0. */
int32_t SettingsWriteText(const char *key, int32_t index, const char *text);
/* Stores a flag; a later read of the key gives "True" when `flag` is not 0.
 * Returns 0. */
int32_t SettingsWriteFlag(const char *key, int32_t index, int32_t flag);

#ifdef __cplusplus
}
#endif

#endif
