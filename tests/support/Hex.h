#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace quillet::tests {

/// Bytes from a readable text: pairs of hex digits, `'...'` for ASCII characters and `u'...'` for
/// the same in UTF-16LE. Blanks between them do not count.
inline std::string bytes(std::string_view text) {
    const auto digit = [](char c) -> int {
        const std::size_t value = std::string_view("0123456789ABCDEF").find(c);
        if (value == std::string_view::npos)
            throw std::invalid_argument(std::string("no hex digit: ") + c);
        return static_cast<int>(value);
    };
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool wide = text[i] == 'u';
        if (text[i] == ' ')
            continue;
        if (wide || text[i] == '\'') {
            i += wide ? 2 : 1;
            for (; text.at(i) != '\''; ++i) {
                result += text[i];
                if (wide)
                    result += '\0';
            }
        } else {
            result += static_cast<char>(digit(text[i]) * 16 + digit(text.at(i + 1)));
            ++i;
        }
    }
    return result;
}

/// For messages of failed expectations.
inline std::string hex(std::string_view bytes) {
    std::string result;
    for (const char c : bytes) {
        result += "0123456789ABCDEF"[static_cast<unsigned char>(c) >> 4];
        result += "0123456789ABCDEF"[static_cast<unsigned char>(c) & 15];
    }
    return result;
}

} // namespace quillet::tests
