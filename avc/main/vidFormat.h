/* Public interface of the video format names: name to format id and rate, format id to name, the
 * alias and progressive maps, and the formats each system type allows (C-compatible).
 *
 * A format id is a signed 32-bit number, 0 for none. A rate is an unsigned 32-bit number of
 * millihertz, 0 for the format's own frame rate.
 *
 * Return convention of this header: operations answer 0 for success and -1 when the name or id has
 * no row; VidFormatInList and VidFormatIsAllowed answer 1 or 0; VidFormatNameOf and
 * VidFormatAllowedList answer a pointer to constant data or NULL. Nothing here prints. A NULL
 * output pointer is a caller's error and a fatal assertion.
 * All operations are callable from any thread: the tables are constant and nothing keeps state. */
#ifndef AVC_MAIN_VIDFORMAT_H
#define AVC_MAIN_VIDFORMAT_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Bits of a name row's Flags: the name spaces a name belongs to. */
#define FMT_MODE_NAME 0x1u   /* names of VidFormatFromName, VidFormatToName, VidFormatNameOf */
#define FMT_SYSTEM_NAME 0x2u /* names of VidTimingBySystemName */

/* A list of format ids: Count ids at Ids. */
typedef struct VidFormatList {
    int32_t Count;
    const int32_t *Ids;
} VidFormatList;

/* The format id and rate of a mode name, compared without regard to case. Answers 0, or -1 when
 * the mode name space holds no such name (or `name` is NULL); the outputs are then left alone.
 * Any thread. */
int32_t VidFormatFromName(const char *name, int32_t *formatId, uint32_t *rate);
/* The mode name of a format id at its own rate (the id is not folded through the alias table),
 * copied into `buffer` of `size` bytes and always terminated in its last byte. Answers 0, or -1
 * when no row names that id; the buffer is then left alone. `buffer` must not be NULL and `size`
 * must be at least 1 (fatal assertion). Any thread. */
int32_t VidFormatToName(int32_t formatId, char *buffer, uint32_t size);
/* The mode name of a format id after folding it through the alias table, or NULL when the id has
 * no name or folds to a changed rate. Any thread. */
const char *VidFormatNameOf(int32_t formatId);
/* Folds `*formatId` in place through the alias table (one step) and stores the alias's rate in
 * `*rate`, or leaves the id and stores 0. Always answers 0. Any thread. */
int32_t VidFormatResolveAlias(int32_t *formatId, uint32_t *rate);
/* The progressive counterpart of an interlaced format id, else the id itself. Any thread. */
int32_t VidFormatProgressiveOf(int32_t formatId);
/* The allowed-format list of the current system type: the first list for selector 0, the second
 * for any other selector; NULL when the current type has no row. Any thread. */
const VidFormatList *VidFormatAllowedList(int32_t selector);
/* 1 when the folded id is in `list` and the alias asks for no changed rate, else 0. A NULL list
 * holds nothing and answers 0. Any thread. */
int32_t VidFormatInList(const VidFormatList *list, int32_t formatId);
/* VidFormatInList of the current type's list chosen by `selector`; 0 when the type has no row.
 * Any thread. */
int32_t VidFormatIsAllowed(int32_t formatId, int32_t selector);

#ifdef __cplusplus
}
#endif

#endif
