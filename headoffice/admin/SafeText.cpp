#include "headoffice/admin/SafeText.h"

#include "data/Utf16.h"
#include "headoffice/RequestLog.h"

namespace quillet::headoffice::admin {

namespace {

constexpr char16_t Replacement = 0xFFFD;

/// Whether a text could hide something with it, or turn around what stands beside it. The joiners
/// U+200C and U+200D are parts of words in some scripts.
bool isTreacherous(char16_t unit) {
    return unit < 0x20 || (unit >= 0x7F && unit <= 0x9F) || unit == 0xAD || unit == 0x061C ||
           unit == 0x180E || unit == 0x200B || unit == 0x200E || unit == 0x200F ||
           (unit >= 0x2028 && unit <= 0x202E) || (unit >= 0x2060 && unit <= 0x206F) ||
           (unit >= 0xFDD0 && unit <= 0xFDEF) || unit == 0xFEFF || unit >= 0xFFF9;
}

/// The first half of the characters U+E0000 to U+E03FF: tags, unseen.
constexpr char16_t TagsHighSurrogate = 0xDB40;

bool isHighSurrogate(char16_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}

std::string escaped(std::string_view text, std::string_view (*escape)(char c)) {
    std::string result;
    result.reserve(text.size());
    for (const char& c : text) {
        const std::string_view instead = escape(c);
        result += instead.empty() ? std::string_view(&c, 1) : instead;
    }
    return result;
}

} // namespace

std::string shown(std::string_view text, std::size_t most) {
    // Four bytes never make less than one unit, so the cut here is never the one that is seen.
    std::u16string units = data::toUtf16(text.substr(0, 4 * most + 4));
    const bool cut = units.size() > most;
    if (cut)
        units.resize(most > 0 && isHighSurrogate(units[most - 1]) ? most - 1 : most);
    for (std::size_t i = 0; i < units.size(); ++i) {
        if (units[i] == u'\n' || units[i] == u'\r' || units[i] == u'\t')
            units[i] = u' ';
        else if (units[i] == TagsHighSurrogate)
            units[i] = units[i + 1] = Replacement;
        else if (isTreacherous(units[i]))
            units[i] = Replacement;
    }
    return data::toUtf8(units) + (cut ? "…" : "");
}

std::string html(std::string_view text, std::size_t most) {
    return escaped(shown(text, most), [](char c) -> std::string_view {
        switch (c) {
        case '&':
            return "&amp;";
        case '<':
            return "&lt;";
        case '>':
            return "&gt;";
        case '"':
            return "&quot;";
        case '\'':
            return "&#39;";
        default:
            return {};
        }
    });
}

std::string labelValue(std::string_view text) {
    return escaped(shown(text), [](char c) -> std::string_view {
        switch (c) {
        case '\\':
            return "\\\\";
        case '"':
            return "\\\"";
        default:
            return {}; // no line feed is left
        }
    });
}

std::string kept(std::string_view text, std::size_t most) {
    // A little more than is kept, so that a password is masked before it is cut.
    std::string masked = withoutSecrets(text.substr(0, 4 * most));
    if (masked.size() <= most)
        return masked;
    while (most > 0 && (static_cast<unsigned char>(masked[most]) & 0xC0U) == 0x80U)
        --most;
    return masked.substr(0, most) + "…";
}

} // namespace quillet::headoffice::admin
