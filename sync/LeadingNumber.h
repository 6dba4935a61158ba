#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace quillet::sync {

/// The number a text starts with: an optional sign, digits, one point. Blanks, tabs and line feeds
/// are skipped wherever they stand. A text that does not start with a number is 0.
double leadingNumber(std::string_view text) noexcept;

/// The same as a 16-bit integer: rounded, halves to the even number, and held within its range.
std::int16_t leadingInteger(std::string_view text) noexcept;

/// The shortest decimal that reads back the same: "." as point, no exponent, no grouping.
std::string numberText(double value);

} // namespace quillet::sync
