#pragma once

#include "data/Error.h"

#include <functional>
#include <string>

namespace quillet::tests {

/// What a call throws; number 0 when it throws nothing.
inline data::Error errorOf(const std::function<void()>& call) {
    try {
        call();
    } catch (const data::Error& error) {
        return error;
    }
    return data::Error(0, "no error");
}

/// "number description" of the same.
inline std::string errorTextOf(const std::function<void()>& call) {
    const data::Error error = errorOf(call);
    return std::to_string(error.Number()) + ' ' + error.Description();
}

} // namespace quillet::tests
