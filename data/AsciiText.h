#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace quillet::data {

/// ASCII only; letters outside it are equal when their bytes are.
constexpr char upperAscii(char c) noexcept {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

inline std::string upperCase(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), upperAscii);
    return result;
}

/// Compares names and keywords, in which ASCII letter case does not count.
constexpr bool equalIgnoringCase(std::string_view a, std::string_view b) noexcept {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return upperAscii(x) == upperAscii(y); });
}

constexpr bool startsWithIgnoringCase(std::string_view text, std::string_view prefix) noexcept {
    return equalIgnoringCase(text.substr(0, prefix.size()), prefix);
}

/// Without leading and trailing blanks, or whatever else is to go.
constexpr std::string_view trimmed(std::string_view text, std::string_view blanks = " ") noexcept {
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

/// Whether nothing but blanks is there.
constexpr bool isBlank(std::string_view text) noexcept {
    return trimmed(text).empty();
}

} // namespace quillet::data
