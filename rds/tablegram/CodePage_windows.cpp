#include "data/Error.h"
#include "data/Utf16.h"
#include "rds/ByteWriter.h"
#include "rds/tablegram/CodePage.h"

#include <windows.h>

namespace quillet::rds {

class CodePage::Impl {
public:
    /// @return false, with nothing appended, when a byte is no character.
    bool appendUnits(std::string_view bytes, std::u16string& out) const {
        const std::size_t before = out.size();
        out.resize(before + bytes.size()); // no code page needs more 16-bit units than bytes
        const int units = MultiByteToWideChar(
            number, MB_ERR_INVALID_CHARS, bytes.data(), static_cast<int>(bytes.size()),
            reinterpret_cast<wchar_t*>(out.data() + before), static_cast<int>(bytes.size()));
        out.resize(before + static_cast<std::size_t>(units));
        return units > 0;
    }

    unsigned number;
};

CodePage::CodePage(unsigned number) : impl_(std::make_unique<Impl>(Impl{number})) {
    if (!IsValidCodePage(number))
        throw data::Error(data::number::Unspecified,
                          "The system does not know the code page " + std::to_string(number) + ".");
}

CodePage::~CodePage() = default;
CodePage::CodePage(CodePage&&) noexcept = default;
CodePage& CodePage::operator=(CodePage&&) noexcept = default;

std::size_t CodePage::toUtf8(std::string_view bytes, char* out) const {
    if (isAscii(bytes))
        return bytes.copy(out, bytes.size());
    const std::size_t room = 3 * bytes.size();
    std::u16string wide;
    if (!impl_->appendUnits(bytes, wide)) {
        while (!bytes.empty()) {
            const bool isLead = IsDBCSLeadByteEx(impl_->number, static_cast<BYTE>(bytes[0])) != 0;
            std::size_t size = isLead && bytes.size() > 1 ? 2 : 1;
            if (!impl_->appendUnits(bytes.substr(0, size), wide)) {
                wide += u'\xFFFD';
                size = 1;
            }
            bytes.remove_prefix(size);
        }
    }
    return data::toUtf8(wide).copy(out, room);
}

std::size_t CodePage::appendFromUtf8(std::string_view utf8, std::string& out) const {
    if (isAscii(utf8)) {
        out.append(utf8);
        return utf8.size();
    }
    const std::u16string wide = data::toUtf16(utf8);
    const auto* units = reinterpret_cast<const wchar_t*>(wide.data());
    const int count = static_cast<int>(wide.size());
    // A default character may not be named for UTF-8, which lacks none.
    const char* defaultCharacter = impl_->number == CP_UTF8 ? nullptr : "?";
    const DWORD flags = impl_->number == CP_UTF8 ? 0 : WC_NO_BEST_FIT_CHARS;
    const int size = WideCharToMultiByte(impl_->number, flags, units, count, nullptr, 0,
                                         defaultCharacter, nullptr);
    const std::size_t before = out.size();
    out.resize(before + static_cast<std::size_t>(size));
    WideCharToMultiByte(impl_->number, flags, units, count, out.data() + before, size,
                        defaultCharacter, nullptr);
    return static_cast<std::size_t>(size);
}

} // namespace quillet::rds
