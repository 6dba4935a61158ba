#pragma once

#include <algorithm>
#include <string_view>

namespace quillet::db {

/// ASCII only; letters outside it are equal when their bytes are.
constexpr char upperAscii(char c) noexcept {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

/// Compares names and keywords, in which ASCII letter case does not count.
constexpr bool equalIgnoringCase(std::string_view a, std::string_view b) noexcept {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return upperAscii(x) == upperAscii(y); });
}

} // namespace quillet::db
