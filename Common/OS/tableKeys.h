// Compile-time checks of constant tables: used in static_assert beside a
// table, so that a duplicated key is a build error rather than a row that a
// lookup can never reach.
#ifndef COMMON_OS_TABLEKEYS_H
#define COMMON_OS_TABLEKEYS_H

#include <cstddef>

// True when `key(row)` differs for every two rows of `rows`.
template <typename Rows, typename Key> constexpr bool TableKeysUnique(const Rows &rows, Key key) {
    for (std::size_t i = 0; i < rows.size(); ++i)
        for (std::size_t j = i + 1; j < rows.size(); ++j)
            if (key(rows[i]) == key(rows[j]))
                return false;
    return true;
}

#endif
