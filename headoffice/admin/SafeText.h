#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quillet::headoffice::admin {

/// A text from outside as it may be shown: whatever bytes come in, well-formed UTF-8 of one line
/// comes out. Ill-formed sequences, control characters and characters that are unseen or change
/// the direction of what follows become U+FFFD, line breaks and tabs blanks.
/// @param most UTF-16 units; a longer text is cut and ends in "…".
std::string shown(std::string_view text, std::size_t most = 200);

/// shown() for the content of an HTML element and for a quoted attribute.
std::string html(std::string_view text, std::size_t most = 200);

/// shown() for between the quotes of a Prometheus label.
std::string labelValue(std::string_view text);

/// What is kept of a text from outside: without passwords, and cut like shown().
/// @param most bytes.
std::string kept(std::string_view text, std::size_t most);

} // namespace quillet::headoffice::admin
