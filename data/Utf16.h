#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quillet::data {

/// UTF-8 to UTF-16. Ill-formed input becomes U+FFFD.
std::u16string toUtf16(std::string_view utf8);

/// UTF-16 to UTF-8. Unpaired surrogates become U+FFFD.
std::string toUtf8(std::u16string_view utf16);

/// UTF-16LE bytes, without alignment, to UTF-8 at `out`.
/// @param units 16-bit units to read from `bytes`.
/// @param out room for at least 3 * units bytes.
/// @return bytes written.
std::size_t utf16LeToUtf8(const char* bytes, std::size_t units, char* out) noexcept;

/// UTF-8 to UTF-16LE bytes, without alignment, at `out`. Ill-formed input becomes U+FFFD.
/// @param out room for at least 2 * utf8.size() bytes.
/// @return bytes written.
std::size_t utf8ToUtf16Le(std::string_view utf8, char* out) noexcept;

} // namespace quillet::data
