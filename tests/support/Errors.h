#pragma once

#include "db/Error.h"

#include <functional>
#include <string>

namespace quillet::tests {

/// What a call throws; number 0 when it throws nothing.
inline db::Error errorOf(const std::function<void()>& call) {
    try {
        call();
    } catch (const db::Error& error) {
        return error;
    }
    return db::Error(0, "no error");
}

/// "number description" of the same.
inline std::string errorTextOf(const std::function<void()>& call) {
    const db::Error error = errorOf(call);
    return std::to_string(error.Number()) + ' ' + error.Description();
}

} // namespace quillet::tests
