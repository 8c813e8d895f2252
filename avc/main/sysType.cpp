// System types: the current hardware model and the lookups of type, board and family words.
#include "avc/main/sysType.h"

#include "avc/main/sysType.tables.h"

#include <atomic>
#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <strings.h>

namespace {

using sysType::hdamBoardWords;
using sysType::hwFamilyWords;
using sysType::sysTypeWords;

static_assert(sysType::NamesUniqueNoCase(sysTypeWords, sysTypeWords.size()));
static_assert(sysType::NamesUniqueNoCase(hdamBoardWords, hdamBoardWords.size() - 1));
static_assert(sysType::NamesUniqueNoCase(hwFamilyWords, hwFamilyWords.size() - 1));
static_assert(sysType::EndsWithMark(hdamBoardWords));
static_assert(sysType::EndsWithMark(hwFamilyWords));

// Every alias stands for the type of a full word, and no two full words name one type.
constexpr bool TypeWordsConsistent() {
    for (const auto &row : sysTypeWords) {
        int fullWords = 0;
        for (const auto &other : sysTypeWords) {
            fullWords += (other.IsAlias == 0 && other.Type == row.Type) ? 1 : 0;
        }
        if (row.IsAlias > 1 || fullWords != 1) {
            return false;
        }
    }
    return true;
}
static_assert(TypeWordsConsistent());

// The current type: a plain process-wide word, written during start-up. Relaxed atomic access
// keeps a late reader on another thread free of a data race without adding a lock.
std::atomic<int32_t> currentSysType{0};

// Walks a table closed by a row without a word; answers the number of the first row whose word
// equals `name` without regard to case, else 0.
template <typename Row, std::size_t N, typename Field>
int32_t LookupNoCase(const std::array<Row, N> &rows, const char *name, Field field) {
    if (name == nullptr) {
        return 0;
    }
    for (const Row *row = rows.data(); row->Name != nullptr; ++row) {
        if (strcasecmp(row->Name, name) == 0) {
            return row->*field;
        }
    }
    return 0;
}

} // namespace

extern "C" void SysTypeSet(int32_t type) {
    currentSysType.store(type, std::memory_order_relaxed);
}

extern "C" int32_t SysTypeGet(void) {
    return currentSysType.load(std::memory_order_relaxed);
}

extern "C" int32_t SysTypeFromName(const char *name) {
    if (name == nullptr) {
        return 0;
    }
    // Walked by the count of rows: this table has no end mark. Alias rows match like any other.
    for (const auto &row : sysTypeWords) {
        if (strcasecmp(row.Name, name) == 0) {
            return row.Type;
        }
    }
    return 0;
}

extern "C" int32_t SysTypeNameUpper(int32_t index, char *buffer, uint32_t size) {
    // A size of 0 leaves no room for the terminating zero: it is refused like an absent buffer,
    // and the buffer is not touched.
    if (buffer == nullptr || size == 0 || index < 0) {
        return -1;
    }
    int32_t fullWord = 0;
    for (const auto &row : sysTypeWords) {
        if (row.IsAlias != 0) {
            continue;
        }
        if (fullWord++ != index) {
            continue;
        }
        uint32_t n = 0;
        for (; n + 1 < size && row.Name[n] != '\0'; ++n) {
            buffer[n] = row.Name[n];
        }
        buffer[n]        = '\0';
        buffer[size - 1] = '\0';
        // The buffer is zero-terminated within size, so the upper-casing stops there.
        return StrToUpperN(buffer, size > INT32_MAX ? INT32_MAX : static_cast<int32_t>(size));
    }
    return -1;
}

extern "C" int32_t StrToUpperN(char *text, int32_t limit) {
    // An absent text has nothing to change; the answer stays 0 as for any other text.
    if (text == nullptr) {
        return 0;
    }
    for (int32_t i = 0; i < limit && text[i] != '\0'; ++i) {
        text[i] = static_cast<char>(std::toupper(static_cast<unsigned char>(text[i])));
    }
    return 0;
}

extern "C" int32_t HdamBoardFromName(const char *name) {
    return LookupNoCase(hdamBoardWords, name, &sysType::HdamBoardWord::Board);
}

extern "C" int32_t HdamBoardFromEnv(void) {
    // Unset gives 0; the empty value and any word outside the table give 0 through the lookup.
    return HdamBoardFromName(std::getenv(SYS_HDAM_ENV_NAME));
}

extern "C" int32_t HwFamilyFromName(const char *name) {
    return LookupNoCase(hwFamilyWords, name, &sysType::HwFamilyWord::Family);
}

extern "C" const char *HwFamilyToName(int32_t family) {
    for (const auto *row = hwFamilyWords.data(); row->Name != nullptr; ++row) {
        if (row->Family == family) {
            return row->Name;
        }
    }
    return nullptr;
}
