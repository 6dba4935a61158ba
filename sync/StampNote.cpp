#include "sync/StampNote.h"

#include "data/AsciiText.h"
#include "data/Error.h"
#include "files/DurableFile.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <system_error>
#include <utility>

namespace quillet::sync {

namespace {

constexpr std::string_view LineEnd = "\r\n";

std::string ending(std::string_view column) {
    std::string result(" ; ");
    result += column;
    return result;
}

bool isPlain(std::string_view stamp) {
    return std::none_of(stamp.begin(), stamp.end(), [](char c) { return c >= '\0' && c < ' '; });
}

/// "YYYY-MM-DD" and whatever follows: earlier times are smaller texts.
bool isSortable(std::string_view stamp) {
    constexpr std::string_view Form = "0000-00-00";
    return stamp.size() >= Form.size() &&
           std::equal(Form.begin(), Form.end(), stamp.begin(), [](char form, char c) {
               return form == '0' ? c >= '0' && c <= '9' : c == form;
           });
}

} // namespace

StampNote::StampNote(std::filesystem::path file, std::vector<std::string_view> columns)
    : file_(std::move(file)), columns_(std::move(columns)) {}

std::filesystem::path StampNote::beside(const std::filesystem::path& store,
                                        const std::filesystem::path& ending) {
    if (store.empty())
        return {};
    std::filesystem::path result = store.parent_path() / store.stem();
    result += ending;
    return result;
}

bool StampNote::exists() const noexcept {
    std::error_code unknown;
    return !file_.empty() && (std::filesystem::exists(file_, unknown) || unknown);
}

std::optional<std::vector<std::string>> StampNote::read() const {
    std::ifstream stream(file_, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(stream),
                           std::istreambuf_iterator<char>()};
    if (!stream.is_open() || stream.bad())
        return std::nullopt;
    std::string_view rest(text);
    std::vector<std::string> stamps;
    for (const std::string_view column : columns_) {
        const std::size_t end = rest.find(LineEnd);
        const std::string_view line = rest.substr(0, std::min(end, rest.size()));
        const std::string expected = ending(column);
        if (end == std::string_view::npos || !line.ends_with(expected) || !isPlain(line))
            return std::nullopt;
        stamps.emplace_back(data::trimmed(line.substr(0, line.size() - expected.size())));
        rest.remove_prefix(end + LineEnd.size());
    }
    if (!rest.empty())
        return std::nullopt;
    return stamps;
}

void StampNote::write(const std::vector<std::string>& stamps) const {
    if (file_.empty())
        throw data::Error(data::number::FileAccess, "There is no place for a note of the stamps.");
    std::string text;
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        text += stamps.at(i);
        text += ending(columns_[i]);
        text += LineEnd;
    }
    files::writeDurably(file_, text);
}

std::string StampNote::earlier(const std::string& stored, const std::string& noted) {
    if (data::isBlank(stored) || data::isBlank(noted))
        return {};
    return isSortable(stored) && isSortable(noted) ? std::min(stored, noted) : noted;
}

void StampNote::remove() const noexcept {
    std::error_code unimportant;
    std::filesystem::remove(file_, unimportant);
}

} // namespace quillet::sync
