// Capability operations: selection of the table set at the first access, the HDAM board step, and
// the lookups and updates of rows by category, key and index.
#include "avc/main/sysCaps.h"

#include "avc/main/sysCapsData.h"
#include "avc/main/sysType.h"
#include "Common/OS/osAssert.h"

#include <atomic>
#include <cinttypes>
#include <cstdio>
#include <cstring>

namespace {

using sysCaps::BoardBlock;
using sysCaps::ConnRateBlock;
using sysCaps::TableSet;

// The selected table set; null until the first access. Written once during start-up (no lock);
// release/acquire keeps a reader on another thread from seeing the reference before the set.
std::atomic<const TableSet *> selectedSet{nullptr};

// The first access: SysCapsGet and SysCapsSet select the tables before they look at the category.
const TableSet &SelectedSet() {
    const TableSet *set = selectedSet.load(std::memory_order_acquire);
    if (set == nullptr) {
        initSysCapsTbl(SysTypeGet());
        set = selectedSet.load(std::memory_order_acquire);
    }
    return *set;
}

// The row of category, key and index in the selected set, or null (also for a category above 4).
SysCapsRow *FindInSelected(SysCapsCategory category, const char *key, int32_t index) {
    const TableSet &set = SelectedSet();
    if (category >= set.size()) {
        return nullptr;
    }
    return SysCapsFind(key, index, set[category]);
}

// The value word of a row, read through the member that its format names.
// A row without a format (blocks need none) holds a number.
SysCapsWord ValueWord(const SysCapsRow &row) {
    if (row.Format == nullptr) {
        return row.Value.Number;
    }
    if (std::strcmp(row.Format, SYS_CAPS_FMT_TEXT) == 0) {
        return reinterpret_cast<SysCapsWord>(row.Value.Text);
    }
    if (std::strcmp(row.Format, SYS_CAPS_FMT_FLOAT) == 0) {
        return reinterpret_cast<SysCapsWord>(row.Value.Real);
    }
    return row.Value.Number;
}

// Prints the value of a row with its format. No size comes with the buffer: it must hold
// SYS_CAPS_TEXT_SIZE bytes (the longest row prints as 58 characters), and a longer value that a
// program stored is cut there. The formats are matched here so that each call of snprintf has a
// literal format; a null text or float reference prints as "(null)".
void PrintValue(const SysCapsRow &row, char *buffer) {
    if (std::strcmp(row.Format, SYS_CAPS_FMT_FLOAT) == 0) {
        if (row.Value.Real == nullptr) {
            std::snprintf(buffer, SYS_CAPS_TEXT_SIZE, " %s ", "(null)");
        } else {
            std::snprintf(buffer, SYS_CAPS_TEXT_SIZE, " %f ", static_cast<double>(*row.Value.Real));
        }
    } else if (std::strcmp(row.Format, SYS_CAPS_FMT_TEXT) == 0) {
        std::snprintf(buffer, SYS_CAPS_TEXT_SIZE, " %s ",
                      row.Value.Text == nullptr ? "(null)" : row.Value.Text);
    } else {
        // " %d " of the whole word: the same digits as %d for every 32-bit number.
        std::snprintf(buffer, SYS_CAPS_TEXT_SIZE, " %" PRIdPTR " ", row.Value.Number);
    }
}

} // namespace

extern "C" void initSysCapsTbl(int32_t sysType) {
    const TableSet *set = sysCaps::TableSetOfType(sysType);
    if (set == nullptr) {
        // A program must set a type with tables before its first access. The failure is reported
        // at the fixed place by which this assertion is known: the data module, line 1341.
        OsAssertFail("0", "avc/main/sysCapsData", 1341, __func__);
    }
    selectedSet.store(set, std::memory_order_release);
    // The board step's own SysCapsSet and SysCapsGet find the set selected and don't come back.
    SysCapsApplyBoard(sysType);
}

extern "C" SysCapsRow *SysCapsFind(const char *key, int32_t index, SysCapsRow *table) {
    if (key == nullptr || table == nullptr) {
        return nullptr;
    }
    for (SysCapsRow *row = table; row->Key != nullptr; ++row) {
        if (row->Index == index && std::strcmp(row->Key, key) == 0) {
            return row;
        }
    }
    return nullptr;
}

extern "C" int32_t SysCapsSet(SysCapsCategory category, const char *key, int32_t index,
                              SysCapsWord value) {
    SysCapsRow *row = FindInSelected(category, key, index);
    if (row == nullptr) {
        return -1;
    }
    // Stored in the member that the row's format names; the format itself never changes.
    if (std::strcmp(row->Format, SYS_CAPS_FMT_TEXT) == 0) {
        row->Value.Text = reinterpret_cast<const char *>(value);
    } else if (std::strcmp(row->Format, SYS_CAPS_FMT_FLOAT) == 0) {
        row->Value.Real = reinterpret_cast<const float *>(value);
    } else {
        row->Value.Number = value;
    }
    return 0;
}

extern "C" SysCapsWord SysCapsGet(SysCapsCategory category, const char *key, int32_t index,
                                  char *buffer) {
    const SysCapsRow *row = FindInSelected(category, key, index);
    if (row == nullptr) {
        return 0; // the buffer stays as it was
    }
    if (buffer != nullptr) {
        PrintValue(*row, buffer);
    }
    return ValueWord(*row);
}

extern "C" const char *SysCapsCategoryName(SysCapsCategory category) {
    // clang-format off
    /* word, by category number 0 to 3; category 4 has none */
    static constexpr const char *kNames[] = {
        "video",
        "audio",
        "comm",
        "hardware",
    };
    // clang-format on
    if (category >= sizeof kNames / sizeof kNames[0]) {
        return nullptr;
    }
    return kNames[category];
}

extern "C" void SysCapsApplyBlock(SysCapsCategory category, const SysCapsRow *block) {
    if (block == nullptr) {
        return;
    }
    for (const SysCapsRow *row = block; row->Key != nullptr; ++row) {
        // A row without a match answers -1 and is skipped.
        (void)SysCapsSet(category, row->Key, row->Index, ValueWord(*row));
    }
}

extern "C" void SysCapsApplyBoard(int32_t sysType) {
    const int32_t board = HdamBoardFromEnv();
    // The key always ends up holding what the environment said, 0 when it said nothing.
    (void)SysCapsSet(SYS_CAPS_VIDEO, "HdamBoardType", 0, board);
    const SysCapsWord family = SysCapsGet(SYS_CAPS_HARDWARE, "HwFamily", 0, nullptr);

    const SysCapsRow *block = nullptr;
    switch (board) {
    case 2: // "DM642": the block depends on the family, and within family 1 on the model
        if (family == 1) {
            block = sysCaps::BoardBlockRows(sysType == 14 ? BoardBlock::A : BoardBlock::B);
        } else if (family == 2) {
            block = sysCaps::BoardBlockRows(BoardBlock::C);
        }
        break;
    case 3: // "MOSS_DM642"
        block = sysCaps::BoardBlockRows(BoardBlock::D);
        break;
    case 4: // "MOSS_DAVINCI"
        block = sysCaps::BoardBlockRows(BoardBlock::E);
        break;
    case 5: // "DAVINCI_QTY3"
        block = sysCaps::BoardBlockRows(BoardBlock::F);
        break;
    case 6: // "DAVINCI_QTY1"
        block = sysCaps::BoardBlockRows(BoardBlock::G);
        break;
    default: // 0 (nothing told) or 1 ("NONE"): no board to describe
        break;
    }
    SysCapsApplyBlock(SYS_CAPS_VIDEO, block);
}

extern "C" const SysCapsRow *SysCapsConnRateBlock(int32_t unused, int32_t rate, int32_t flagA,
                                                  int32_t flagB) {
    // What the rate and the flags stand for is the callers' business; this only picks a block.
    (void)unused;
    ConnRateBlock block;
    switch (rate) {
    case 8192:
        block = (flagA != 0 && flagB == 0) ? ConnRateBlock::H : ConnRateBlock::G;
        break;
    case 6144:
        block = flagA == 0 ? ConnRateBlock::E : ConnRateBlock::F;
        break;
    case 4096:
        block = flagA == 0 ? ConnRateBlock::C : ConnRateBlock::D;
        break;
    default:
        block = flagA == 0 ? ConnRateBlock::A : ConnRateBlock::B;
        break;
    }
    return sysCaps::ConnRateBlockRows(block);
}

void sysCaps::ForgetSelectionForTest() {
    selectedSet.store(nullptr, std::memory_order_release);
}
