// Video format names: lookups by name and by id, alias folding, the progressive map and the
// formats allowed by the current system type.
#include "avc/main/vidFormat.h"

#include "avc/main/sysType.h"
#include "avc/main/vidFormatData.h"
#include "Common/OS/osAssert.h"

#include <cstring>
#include <strings.h>

using vidFormat::VidFormatAliasTable;
using vidFormat::VidFormatAllowedTable;
using vidFormat::VidFormatName;
using vidFormat::VidFormatNameTable;
using vidFormat::VidFormatProgressiveMap;

namespace {

// The first mode name row of `formatId` at the format's own rate, or null. The id is taken as
// given, not folded.
const VidFormatName *VidFormatFindModeRow(int32_t formatId) {
    for (const VidFormatName &row : VidFormatNameTable) {
        if ((row.Flags & FMT_MODE_NAME) != 0 && row.Rate == 0 && row.FormatId == formatId) {
            return &row;
        }
    }
    return nullptr;
}

} // namespace

extern "C" {

int32_t VidFormatFromName(const char *name, int32_t *formatId, uint32_t *rate) {
    OS_ASSERT(formatId != nullptr && rate != nullptr);
    // A missing name is bad input like an unknown one: no row holds it.
    if (name == nullptr) {
        return -1;
    }
    for (const VidFormatName &row : VidFormatNameTable) {
        if ((row.Flags & FMT_MODE_NAME) != 0 && strcasecmp(row.Name, name) == 0) {
            *formatId = row.FormatId;
            *rate     = row.Rate;
            return 0;
        }
    }
    return -1;
}

// A buffer of at least one byte is the caller's duty: without it there is no room for the
// terminating zero, so a NULL buffer or a size of 0 is a fatal assertion, checked before the walk
// so that it fires whether or not the id has a name.
int32_t VidFormatToName(int32_t formatId, char *buffer, uint32_t size) {
    OS_ASSERT(buffer != nullptr && size >= 1);
    const VidFormatName *row = VidFormatFindModeRow(formatId);
    if (row == nullptr) {
        return -1;
    }
    std::strncpy(buffer, row->Name, size);
    buffer[size - 1] = '\0';
    return 0;
}

const char *VidFormatNameOf(int32_t formatId) {
    uint32_t rate = 0;
    VidFormatResolveAlias(&formatId, &rate);
    if (rate != 0) {
        return nullptr;
    }
    const VidFormatName *row = VidFormatFindModeRow(formatId);
    return row != nullptr ? row->Name : nullptr;
}

int32_t VidFormatResolveAlias(int32_t *formatId, uint32_t *rate) {
    OS_ASSERT(formatId != nullptr && rate != nullptr);
    for (const auto &alias : VidFormatAliasTable) {
        if (alias.FormatId == *formatId) {
            *formatId = alias.TargetId;
            *rate     = alias.Rate;
            return 0;
        }
    }
    *rate = 0;
    return 0;
}

int32_t VidFormatProgressiveOf(int32_t formatId) {
    for (const auto &row : VidFormatProgressiveMap) {
        if (row.FormatId == formatId) {
            return row.ProgressiveId;
        }
    }
    return formatId;
}

// No caller gives a selector yet; it is a plain two-way choice: 0 picks the first list of the
// type's row, anything else (negative numbers included) the second.
const VidFormatList *VidFormatAllowedList(int32_t selector) {
    const int32_t type = SysTypeGet();
    for (const auto &row : VidFormatAllowedTable) {
        if (row.Type == type) {
            return selector == 0 ? &row.First : &row.Second;
        }
    }
    return nullptr;
}

// A missing list (a system type without a row) is taken as a list that holds nothing: the answer
// is 0 and nothing is read through the null pointer.
int32_t VidFormatInList(const VidFormatList *list, int32_t formatId) {
    uint32_t rate = 0;
    VidFormatResolveAlias(&formatId, &rate);
    // A format asked for at a changed rate is never in a list, even when its target is.
    if (rate != 0 || list == nullptr) {
        return 0;
    }
    OS_ASSERT(list->Count >= 0 && (list->Count == 0 || list->Ids != nullptr));
    for (int32_t i = 0; i < list->Count; ++i) {
        if (list->Ids[i] == formatId) {
            return 1;
        }
    }
    return 0;
}

// On a system type without a row the answer is 0: that type allows no format.
int32_t VidFormatIsAllowed(int32_t formatId, int32_t selector) {
    return VidFormatInList(VidFormatAllowedList(selector), formatId);
}

} // extern "C"
