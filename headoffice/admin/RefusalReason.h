#pragma once

#include <array>
#include <string_view>

namespace quillet::headoffice::admin {

/// Why a connection or a request was refused: for machines, and in words for a person.
struct RefusalReason {
    std::string_view label;
    std::string_view words;
};

/// Reasons that are not among the others are the last one, so that there are never more than these.
inline constexpr std::array<RefusalReason, 9> RefusalReasons = {{
    {"bad_request", "the request could not be understood"},
    {"gone", "the client left before its reply"},
    {"no_memory", "no memory left for the request"},
    {"no_room", "too many connections"},
    {"not_allowed", "the address is not allowed"},
    {"queue_full", "too many calls waiting"},
    {"too_large", "the request was too large"},
    {"too_slow", "the client was too slow"},
    {"other", "another reason"},
}};

constexpr const RefusalReason& refusalReason(std::string_view label) {
    for (const RefusalReason& reason : RefusalReasons) {
        if (reason.label == label)
            return reason;
    }
    return RefusalReasons.back();
}

} // namespace quillet::headoffice::admin
