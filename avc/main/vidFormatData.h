// Row types and declarations of the video format name tables (C++ only, not installed): shared by
// the operations, the timing records' lookups by name and the tests.
#ifndef AVC_MAIN_VIDFORMATDATA_H
#define AVC_MAIN_VIDFORMATDATA_H

#include "avc/main/textNoCase.h"
#include "avc/main/vidFormat.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace vidFormat {

// One row of the name table.
struct VidFormatName {
    uint32_t Flags;   // FMT_MODE_NAME, FMT_SYSTEM_NAME: the name spaces of the row
    const char *Name; // the name; never null
    int32_t FormatId; // the format the name stands for
    uint32_t Rate;    // millihertz at which the name asks for the format, 0 for its own rate
};

// One row of the alias table: FormatId stands for TargetId at Rate.
struct VidFormatAlias {
    int32_t FormatId;
    int32_t TargetId;
    uint32_t Rate; // millihertz, 0 for a plain synonym
};

// One row of the progressive map.
struct VidFormatProgressive {
    int32_t FormatId;      // an interlaced format
    int32_t ProgressiveId; // its progressive counterpart
};

// One row of the allowed-format table.
struct VidFormatAllowedRow {
    int32_t Type;         // SysType
    VidFormatList First;  // chosen by selector 0
    VidFormatList Second; // chosen by any other selector
};

// Row counts. The tables have no end mark: every walk counts its rows.
inline constexpr std::size_t kNameRows        = 163;
inline constexpr std::size_t kAliasRows       = 6;
inline constexpr std::size_t kProgressiveRows = 6;
inline constexpr std::size_t kAllowedRows     = 7;

// Defined in vidFormatData.cpp.
extern const std::array<VidFormatName, kNameRows> VidFormatNameTable;
extern const std::array<VidFormatAlias, kAliasRows> VidFormatAliasTable;
extern const std::array<VidFormatProgressive, kProgressiveRows> VidFormatProgressiveMap;
extern const std::array<VidFormatAllowedRow, kAllowedRows> VidFormatAllowedTable;

} // namespace vidFormat

#endif
