#pragma once

#include <string_view>

namespace quillet::headoffice::admin {

/// The style sheet of the admin page. Light or dark as the browser is; below 1000 pixels every row
/// of a table is a block of its own.
extern const std::string_view AdminStyle;

} // namespace quillet::headoffice::admin
