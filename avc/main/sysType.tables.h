// Constant word tables of the system types (C++ only, not installed): type words, HDAM board words
// and hardware family words, shared by sysType.cpp and its tests.
#ifndef AVC_MAIN_SYSTYPE_TABLES_H
#define AVC_MAIN_SYSTYPE_TABLES_H

#include "avc/main/textNoCase.h"
#include <array>
#include <cstddef>
#include <cstdint>

namespace sysType {

struct SysTypeWord {
    const char *Name;
    uint32_t IsAlias; // 1 for a short form of a word that has a row of its own, else 0
    int32_t Type;     // the SysType the word stands for
};

struct HdamBoardWord {
    const char *Name; // nullptr in the row that ends the table
    int32_t Board;
};

struct HwFamilyWord {
    const char *Name; // nullptr in the row that ends the table
    int32_t Family;
};

// The types are not in rising order ("rowan_int" stands before "hazel"); lookups walk the table
// by its count, there is no end mark.
// clang-format off
/* Name,         IsAlias, Type (SysType) */
inline constexpr auto sysTypeWords = std::to_array<SysTypeWord>({
    {"lrch",       1,       16},
    {"larch",      0,       16},
    {"alder",      0,       17},
    {"rowan",      0,       18},
    {"rowan_int",  0,       23},
    {"hazel",      0,       20},
    {"aspen",      0,       21},
    {"elm",        0,       22},
});

// Board 0 means that nothing was told, 1 that no board is fitted.
/* Name (board word), Board (board number) */
inline constexpr auto hdamBoardWords = std::to_array<HdamBoardWord>({
    {"NONE",          1},
    {"DM642",         2},
    {"MOSS_DM642",    3},
    {"MOSS_DAVINCI",  4},
    {"DAVINCI_QTY3",  5},
    {"DAVINCI_QTY1",  6},
    {nullptr,         0},
});

// The number is what the capability key HwFamily holds.
/* Name (family word), Family (family number) */
inline constexpr auto hwFamilyWords = std::to_array<HwFamilyWord>({
    {"lrch",   1},
    {"rowan",  2},
    {nullptr,  0},
});
// clang-format on

// True when the words of rows [0, count) differ pairwise, ignoring case.
template <typename Row, std::size_t N>
constexpr bool NamesUniqueNoCase(const std::array<Row, N> &rows, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        for (std::size_t j = i + 1; j < count; ++j) {
            if (TextEqualNoCase(rows[i].Name, rows[j].Name)) {
                return false;
            }
        }
    }
    return true;
}

// True when rows [0, N - 1) have a word and the last row has none.
template <typename Row, std::size_t N> constexpr bool EndsWithMark(const std::array<Row, N> &rows) {
    for (std::size_t i = 0; i + 1 < N; ++i) {
        if (rows[i].Name == nullptr) {
            return false;
        }
    }
    return rows[N - 1].Name == nullptr;
}

} // namespace sysType

#endif
