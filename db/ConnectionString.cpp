#include "db/ConnectionString.h"

#include "data/AsciiText.h"

#include <utility>

namespace quillet::db {

namespace {

constexpr std::string_view Blanks = " \t\r\n";

/// Reads a braced value.
/// @param position at the "{"; afterwards behind the closing brace, or at the end without one.
std::string braced(std::string_view text, std::size_t& position) {
    std::string value;
    for (++position; position < text.size(); ++position) {
        if (text[position] == '}') {
            ++position;
            if (position == text.size() || text[position] != '}')
                break;
        }
        value += text[position];
    }
    return value;
}

} // namespace

ConnectionString::ConnectionString(std::string text) : text_(std::move(text)) {
    const std::string_view all = text_;
    for (std::size_t position = 0; position < all.size();) {
        Entry entry{position, 0, {}, {}};
        const std::size_t mark = all.find_first_of("=;", position);
        if (mark != std::string_view::npos && all[mark] == '=') {
            entry.key = data::trimmed(all.substr(position, mark - position), Blanks);
            std::size_t begin = all.find_first_not_of(" \t", mark + 1);
            if (begin != std::string_view::npos && all[begin] == '{') {
                entry.value = braced(all, begin);
                entry.end = all.find(';', begin);
            } else {
                entry.end = all.find(';', mark);
                entry.value = data::trimmed(all.substr(mark + 1, entry.end - mark - 1), Blanks);
            }
        } else {
            entry.end = mark;
        }
        entry.end = entry.end == std::string_view::npos ? all.size() : entry.end + 1;
        position = entry.end;
        entries_.push_back(std::move(entry));
    }
}

std::string ConnectionString::value(std::string_view key) const {
    for (const Entry& entry : entries_) {
        if (data::equalIgnoringCase(entry.key, key))
            return entry.value;
    }
    return {};
}

std::vector<std::string> ConnectionString::keys() const {
    std::vector<std::string> result;
    for (const Entry& entry : entries_) {
        const std::string_view text =
            std::string_view(text_).substr(entry.begin, entry.end - entry.begin);
        if (!entry.key.empty() || !data::trimmed(text, " \t\r\n;").empty())
            result.push_back(entry.key);
    }
    return result;
}

std::string ConnectionString::without(std::string_view key) const {
    std::string result;
    for (const Entry& entry : entries_) {
        if (!data::equalIgnoringCase(entry.key, key))
            result.append(text_, entry.begin, entry.end - entry.begin);
    }
    return result;
}

} // namespace quillet::db
