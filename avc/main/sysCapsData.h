// Capability data shared by the capability operations and their tests (C++ only, not installed):
// the table sets by SysType, the HDAM override blocks, the connection-rate blocks and the test
// seam.
#ifndef AVC_MAIN_SYSCAPSDATA_H
#define AVC_MAIN_SYSCAPSDATA_H

#include "avc/main/sysCaps.h"

#include <array>
#include <cstdint>
#include <span>

namespace sysCaps {

inline constexpr uint32_t kCategoryCount = 5;

// The category tables of one model, indexed by category number. Each table ends with a row whose
// Key is null.
using TableSet = std::array<SysCapsRow *, kCategoryCount>;

// One row of the selection table: a SysType and its table set.
struct TypeTableSet {
    int32_t Type;
    const TableSet *Set;
};

// Every SysType that has a table set, with that set (types 16 and 17 share one).
std::span<const TypeTableSet> TypeTableSets();
// The table set of `type`, or nullptr when the type has none.
const TableSet *TableSetOfType(int32_t type);

// Override blocks of the HDAM boards, applied to category 0.
enum class BoardBlock : uint32_t { A, B, C, D, E, F, G };
const SysCapsRow *BoardBlockRows(BoardBlock block);

// Blocks of eight connRate rows, for category 2.
enum class ConnRateBlock : uint32_t { A, B, C, D, E, F, G, H };
const SysCapsRow *ConnRateBlockRows(ConnRateBlock block);

// Test seam: puts every capability row back to its value at program start (sysCapsData.cpp), and
// forgets the selected table set so that the next access selects again (sysCaps.cpp).
void RestoreRowsForTest();
void ForgetSelectionForTest();

} // namespace sysCaps

#endif
