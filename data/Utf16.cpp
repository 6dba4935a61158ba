#include "data/Utf16.h"

namespace quillet::data {

namespace {

constexpr char32_t Replacement = 0xFFFD;

bool isHighSurrogate(char32_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}
bool isLowSurrogate(char32_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

char* encodeUtf8(char32_t code, char* out) {
    if (code < 0x80) {
        *out++ = static_cast<char>(code);
    } else if (code < 0x800) {
        *out++ = static_cast<char>(0xC0U | (code >> 6U));
        *out++ = static_cast<char>(0x80U | (code & 0x3FU));
    } else if (code < 0x10000) {
        *out++ = static_cast<char>(0xE0U | (code >> 12U));
        *out++ = static_cast<char>(0x80U | ((code >> 6U) & 0x3FU));
        *out++ = static_cast<char>(0x80U | (code & 0x3FU));
    } else {
        *out++ = static_cast<char>(0xF0U | (code >> 18U));
        *out++ = static_cast<char>(0x80U | ((code >> 12U) & 0x3FU));
        *out++ = static_cast<char>(0x80U | ((code >> 6U) & 0x3FU));
        *out++ = static_cast<char>(0x80U | (code & 0x3FU));
    }
    return out;
}

/// Reads units through `unitAt`, so that the same walk serves aligned and wire text.
template <typename UnitAt>
std::size_t encodeAll(std::size_t units, char* out, UnitAt unitAt) {
    char* next = out;
    for (std::size_t i = 0; i < units; ++i) {
        char32_t code = unitAt(i);
        if (isHighSurrogate(code) && i + 1 < units && isLowSurrogate(unitAt(i + 1)))
            code = 0x10000 + ((code - 0xD800) << 10U) + (unitAt(++i) - 0xDC00);
        else if (isHighSurrogate(code) || isLowSurrogate(code))
            code = Replacement;
        next = encodeUtf8(code, next);
    }
    return static_cast<std::size_t>(next - out);
}

/// Decodes one code point; an ill-formed sequence takes one byte.
char32_t decodeUtf8(std::string_view text, std::size_t& position) {
    const auto byteAt = [&](std::size_t i) {
        return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U;
    };
    const char32_t lead = byteAt(position);
    std::size_t length = 0;
    char32_t code = 0;
    char32_t smallest = 0;
    if (lead < 0x80) {
        ++position;
        return lead;
    }
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2, code = lead & 0x1FU, smallest = 0x80;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3, code = lead & 0x0FU, smallest = 0x800;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4, code = lead & 0x07U, smallest = 0x10000;
    }
    for (std::size_t i = 1; i < length; ++i) {
        const char32_t trail = byteAt(position + i);
        if ((trail & 0xC0U) != 0x80U) {
            length = 0;
            break;
        }
        code = code << 6U | (trail & 0x3FU);
    }
    const bool wellFormed = length != 0 && code >= smallest && code <= 0x10FFFF &&
                            !isHighSurrogate(code) && !isLowSurrogate(code);
    position += wellFormed ? length : 1;
    return wellFormed ? code : Replacement;
}

/// Writes units through `put`.
template <typename Put>
void decodeAll(std::string_view utf8, Put put) {
    for (std::size_t position = 0; position < utf8.size();) {
        const char32_t code = decodeUtf8(utf8, position);
        if (code < 0x10000) {
            put(static_cast<char16_t>(code));
        } else {
            put(static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10U)));
            put(static_cast<char16_t>(0xDC00 + ((code - 0x10000) & 0x3FFU)));
        }
    }
}

} // namespace

std::u16string toUtf16(std::string_view utf8) {
    std::u16string result;
    result.reserve(utf8.size());
    decodeAll(utf8, [&result](char16_t unit) { result += unit; });
    return result;
}

std::size_t utf8ToUtf16Le(std::string_view utf8, char* out) noexcept {
    char* next = out;
    decodeAll(utf8, [&next](char16_t unit) {
        *next++ = static_cast<char>(unit & 0xFFU);
        *next++ = static_cast<char>(unit >> 8U);
    });
    return static_cast<std::size_t>(next - out);
}

std::string toUtf8(std::u16string_view utf16) {
    std::string result(utf16.size() * 3, '\0');
    result.resize(encodeAll(utf16.size(), result.data(),
                            [&](std::size_t i) -> char32_t { return utf16[i]; }));
    return result;
}

std::size_t utf16LeToUtf8(const char* bytes, std::size_t units, char* out) noexcept {
    return encodeAll(units, out, [bytes](std::size_t i) -> char32_t {
        return static_cast<unsigned char>(bytes[2 * i]) |
               static_cast<char32_t>(static_cast<unsigned char>(bytes[2 * i + 1])) << 8U;
    });
}

} // namespace quillet::data
