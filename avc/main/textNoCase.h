// Case-insensitive comparison of the tables' ASCII names, usable in
// constant expressions; agrees with strcasecmp on those names.
#ifndef AVC_MAIN_TEXTNOCASE_H
#define AVC_MAIN_TEXTNOCASE_H

constexpr bool TextEqualNoCase(const char *a, const char *b) {
    auto lower = [](char c) {
        return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
    };
    for (; *a != '\0' && *b != '\0'; ++a, ++b) {
        if (lower(*a) != lower(*b)) {
            return false;
        }
    }
    return *a == *b;
}

#endif
