#include "rds/tablegram/WideDecimal.h"

#include "data/AsciiText.h"
#include "data/Error.h"

#include <algorithm>
#include <charconv>
#include <string>

namespace quillet::rds {

namespace {

using Limbs = std::array<std::uint32_t, 4>;

/// @return false, with the limbs unchanged, when the result has no room.
bool multiplyAdd(Limbs& limbs, std::uint32_t factor, std::uint32_t addend) noexcept {
    Limbs result{};
    std::uint64_t carry = addend;
    for (std::size_t i = 0; i < limbs.size(); ++i) {
        carry += std::uint64_t{limbs[i]} * factor;
        result[i] = static_cast<std::uint32_t>(carry);
        carry >>= 32U;
    }
    if (carry != 0)
        return false;
    limbs = result;
    return true;
}

std::uint32_t divide(Limbs& limbs, std::uint32_t divisor) noexcept {
    std::uint64_t remainder = 0;
    for (std::size_t i = limbs.size(); i-- > 0;) {
        remainder = remainder << 32U | limbs[i];
        limbs[i] = static_cast<std::uint32_t>(remainder / divisor);
        remainder %= divisor;
    }
    return static_cast<std::uint32_t>(remainder);
}

[[noreturn]] void failOverflow() {
    throw data::Error(data::number::Overflow, "A number is too large for its column.");
}

bool isDigit(char c) noexcept {
    return c >= '0' && c <= '9';
}

/// The magnitude's digits, at least one, at `out` (room for 39).
std::size_t writeDigits(Limbs limbs, char* out) {
    constexpr std::size_t MaxDigits = 39; // of 2^128 - 1
    if (limbs[2] == 0 && limbs[3] == 0) {
        const std::uint64_t low = limbs[0] | std::uint64_t{limbs[1]} << 32U;
        return static_cast<std::size_t>(std::to_chars(out, out + MaxDigits, low).ptr - out);
    }
    constexpr std::uint32_t Billion = 1'000'000'000;
    std::array<char, 45> reversed{};
    std::size_t count = 0;
    while (std::any_of(limbs.begin(), limbs.end(), [](std::uint32_t limb) { return limb != 0; })) {
        std::uint32_t group = divide(limbs, Billion);
        for (int i = 0; i < 9; ++i, group /= 10)
            reversed[count++] = static_cast<char>('0' + group % 10);
    }
    while (reversed[count - 1] == '0')
        --count;
    std::reverse_copy(reversed.begin(), reversed.begin() + static_cast<std::ptrdiff_t>(count), out);
    return count;
}

} // namespace

WideDecimal WideDecimal::parse(std::string_view text) {
    text = data::trimmed(text);

    WideDecimal result;
    std::size_t i = 0;
    if (i < text.size() && (text[i] == '-' || text[i] == '+'))
        result.negative = text[i++] == '-';
    std::size_t digits = 0;
    for (; i < text.size() && isDigit(text[i]); ++i, ++digits) {
        if (!multiplyAdd(result.limbs, 10, static_cast<std::uint32_t>(text[i] - '0')))
            failOverflow();
    }
    if (i < text.size() && text[i] == '.') {
        bool room = true;
        for (++i; i < text.size() && isDigit(text[i]); ++i, ++digits) {
            const auto digit = static_cast<std::uint32_t>(text[i] - '0');
            if (room && result.scale < MaxScale && multiplyAdd(result.limbs, 10, digit)) {
                ++result.scale;
            } else {
                if (room && digit >= 5)
                    multiplyAdd(result.limbs, 1, 1);
                room = false;
            }
        }
    }
    if (digits == 0 || i != text.size())
        throw data::Error(data::number::TypeMismatch, "'" + std::string(text) + "' is no number.");
    return result;
}

void WideDecimal::rescale(int newScale) {
    if (!tryRescale(newScale))
        failOverflow();
}

bool WideDecimal::tryRescale(int newScale) noexcept {
    WideDecimal result = *this;
    while (result.scale < newScale && !isZero()) {
        if (!multiplyAdd(result.limbs, 10, 0))
            return false;
        ++result.scale;
    }
    std::uint32_t lastDropped = 0;
    for (; result.scale > newScale; --result.scale)
        lastDropped = divide(result.limbs, 10);
    if (lastDropped >= 5)
        multiplyAdd(result.limbs, 1, 1);
    result.scale = newScale;
    *this = result;
    return true;
}

bool WideDecimal::isZero() const noexcept {
    return limbs == Limbs{};
}

std::size_t WideDecimal::format(char* out) const {
    char digits[48];
    std::size_t count = writeDigits(limbs, digits);
    if (isZero()) {
        *out = '0';
        return 1;
    }
    auto fraction = static_cast<std::size_t>(std::max(scale, 0));
    while (fraction > 0 && digits[count - 1] == '0') {
        --fraction;
        --count;
    }
    char* next = out;
    if (negative)
        *next++ = '-';
    if (count > fraction) {
        next = std::copy_n(digits, count - fraction, next);
        next = std::fill_n(next, std::max(-scale, 0), '0');
        if (fraction > 0)
            *next++ = '.';
        next = std::copy_n(digits + (count - fraction), fraction, next);
    } else {
        *next++ = '0';
        *next++ = '.';
        next = std::fill_n(next, fraction - count, '0');
        next = std::copy_n(digits, count, next);
    }
    return static_cast<std::size_t>(next - out);
}

} // namespace quillet::rds
