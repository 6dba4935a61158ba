#include "sync/LeadingNumber.h"

#include "data/Value.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace quillet::sync {

double leadingNumber(std::string_view text) noexcept {
    // Longer numbers than this do not come from any column; their further digits are zeros to a
    // double anyway, and the point's place is kept by reading them as such.
    std::string digits;
    bool point = false;
    for (const char c : text) {
        if (c == ' ' || c == '\t' || c == '\n')
            continue;
        const bool sign = (c == '-' || c == '+') && digits.empty();
        const bool firstPoint = c == '.' && !point;
        if (!sign && !firstPoint && (c < '0' || c > '9'))
            break;
        point = point || firstPoint;
        digits += c;
    }
    const char* first = digits.data();
    const char* last = first + digits.size();
    if (first != last && *first == '+')
        ++first;
    double value = 0;
    std::from_chars(first, last, value, std::chars_format::fixed);
    return value;
}

std::int16_t leadingInteger(std::string_view text) noexcept {
    using Limits = std::numeric_limits<std::int16_t>;
    const double rounded = std::nearbyint(leadingNumber(text));
    return static_cast<std::int16_t>(std::clamp<double>(rounded, Limits::min(), Limits::max()));
}

std::string numberText(double value) {
    return data::Value::real(value).toText();
}

} // namespace quillet::sync
