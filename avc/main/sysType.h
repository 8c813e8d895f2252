/* Public interface of the system types: the current hardware model, the type words, the HDAM board
 * words and the hardware family words (C-compatible).
 *
 * Return convention of this header: lookups answer the number they name, or 0 for a word that no
 * row holds (a type, board or family number of 0 means "none"); SysTypeNameUpper answers 0 or -1;
 * HwFamilyToName answers a constant text or NULL. Nothing here prints.
 * All operations are callable from any thread; the current type is written during start-up only. */
#ifndef AVC_MAIN_SYSTYPE_H
#define AVC_MAIN_SYSTYPE_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The environment variable that names the HDAM board fitted. */
#define SYS_HDAM_ENV_NAME "VANTREL_HDAMID"

/* Stores the current type (process-wide; 0 until the first call). Any thread, during start-up. */
void SysTypeSet(int32_t type);
/* The current type; 0 before any SysTypeSet. Any thread. */
int32_t SysTypeGet(void);
/* The type of a type word, compared without regard to case; 0 for NULL or an unknown word.
 * Any thread. */
int32_t SysTypeFromName(const char *name);
/* The index-th type word that is not an alias, in capitals, in `buffer` of `size` bytes (at most
 * size - 1 characters and a terminating zero). Answers 0, or -1 when `buffer` is NULL, `size` is
 * 0 or no row has that index; the buffer is then left alone. Any thread. */
int32_t SysTypeNameUpper(int32_t index, char *buffer, uint32_t size);
/* Upper-cases `text` in place, at most `limit` characters or up to its terminating zero.
 * Always answers 0. Any thread. */
int32_t StrToUpperN(char *text, int32_t limit);
/* The board number of a board word, compared without regard to case; 0 for NULL or an unknown
 * word. Any thread. */
int32_t HdamBoardFromName(const char *name);
/* The board number named by the environment variable SYS_HDAM_ENV_NAME; 0 when it is unset or
 * holds no board word. Any thread. */
int32_t HdamBoardFromEnv(void);
/* The family number of a family word, compared without regard to case; 0 for NULL or an unknown
 * word. Any thread. */
int32_t HwFamilyFromName(const char *name);
/* The family word of a family number, or NULL when no row has that number. Any thread. */
const char *HwFamilyToName(int32_t family);

#ifdef __cplusplus
}
#endif

#endif
