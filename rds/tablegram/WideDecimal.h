#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace quillet::rds {

/// An exact decimal of up to 128 bits over a power of ten: what the number types of the wire
/// hold.
struct WideDecimal {
    static constexpr std::size_t MaxText = 192; ///< characters that format() may write

    /// Digits of the largest number: a scale beyond them, either way, says nothing. Numbers of the
    /// wire are held to it on reading and writing.
    static constexpr int MaxScale = 38;

    std::array<std::uint32_t, 4> limbs{}; ///< the magnitude, least significant first
    int scale = 0;                        ///< -128 to 127; the value is magnitude / 10^scale
    bool negative = false;

    /// @param text optional sign, digits, optional "." and digits; blanks around it do not count.
    ///             Fractional digits that find no room are rounded off.
    /// @throws data::Error 13 when it is no number, 6 when its integer part needs over 128 bits.
    static WideDecimal parse(std::string_view text);

    /// Changes the scale, rounding half away from zero.
    /// @throws data::Error 6 when the magnitude no longer fits.
    void rescale(int newScale);

    /// The same, but where rescale() throws this one leaves the number as it is.
    /// @return whether the number has the scale now.
    bool tryRescale(int newScale) noexcept;

    bool isZero() const noexcept;
    bool isNegative() const noexcept { return negative && !isZero(); } ///< zero has no sign
    std::uint64_t low64() const noexcept { return limbs[0] | std::uint64_t{limbs[1]} << 32U; }
    bool fits64() const noexcept { return limbs[2] == 0 && limbs[3] == 0; }

    /// Writes the shortest plain text, without trailing zeros behind the point.
    /// @param out room for MaxText characters.
    /// @return characters written.
    std::size_t format(char* out) const;
};

} // namespace quillet::rds
