// Text functions of the OS layer: trimming blanks, case, a comparison that
// ignores case, and a number printed in base 10 or 16.
#include "Common/OS/osAssert.h"
#include "Common/OS/osUtil.h"

#include <cctype>
#include <cstdio>
#include <cstring>

namespace {

// The highest code, taken unsigned, that counts as blank.
constexpr unsigned char blankMax = 32;

bool isBlank(char c) {
    return static_cast<unsigned char>(c) <= blankMax;
}

// compareNoCase looks at this many characters of each text.
constexpr std::size_t compareMax = 255;

// An upper-case copy of at most compareMax characters of `text`.
void upperCopy(char (&copy)[compareMax + 1], const char *text) {
    std::size_t i = 0;
    for (; i < compareMax && text[i] != '\0'; ++i)
        copy[i] = static_cast<char>(std::toupper(static_cast<unsigned char>(text[i])));
    copy[i] = '\0';
}

} // namespace

extern "C" char *trimLeft(char *text) {
    OS_ASSERT(text != nullptr);
    std::size_t first = 0;
    while (text[first] != '\0' && isBlank(text[first]))
        ++first;
    if (first > 0)
        std::memmove(text, text + first, std::strlen(text + first) + 1);
    return text;
}

extern "C" char *trimRight(char *text) {
    OS_ASSERT(text != nullptr);
    std::size_t length = std::strlen(text);
    while (length > 0 && isBlank(text[length - 1]))
        text[--length] = '\0';
    return text;
}

extern "C" char *trimBoth(char *text) {
    return trimRight(trimLeft(text));
}

extern "C" char *lowerCase(char *text) {
    OS_ASSERT(text != nullptr);
    for (char *c = text; *c != '\0'; ++c)
        *c = static_cast<char>(std::tolower(static_cast<unsigned char>(*c)));
    return text;
}

extern "C" char *upperCase(char *text) {
    OS_ASSERT(text != nullptr);
    for (char *c = text; *c != '\0'; ++c)
        *c = static_cast<char>(std::toupper(static_cast<unsigned char>(*c)));
    return text;
}

extern "C" int compareNoCase(const char *a, const char *b) {
    OS_ASSERT(a != nullptr && b != nullptr);
    char upperA[compareMax + 1], upperB[compareMax + 1];
    upperCopy(upperA, a);
    upperCopy(upperB, b);
    return std::strcmp(upperA, upperB);
}

// The buffer's size isn't given: "%d" of a 32-bit value needs 12 characters,
// and the header asks for at least that many.
extern "C" char *intToText(int32_t value, char *buffer, int32_t base) {
    OS_ASSERT(buffer != nullptr);
    constexpr int textSize = 12;
    if (base == 10)
        std::snprintf(buffer, textSize, "%d", static_cast<int>(value));
    else if (base == 16)
        std::snprintf(buffer, textSize, "%x", static_cast<unsigned>(value));
    else
        return nullptr;
    return buffer;
}
