#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace quillet::rds {

/// The ANSI code page of the head office's machines, Korean. It is nowhere on the wire
/// (MS-ADTG 2.2.3.14.3.3 leaves the field reserved), so both ends have to agree on it.
inline constexpr unsigned DefaultCodePage = 949;

/// Converts texts of one ANSI code page. What cannot be converted never fails: bytes that are no
/// character become U+FFFD, characters that the code page lacks become '?'.
///
/// An instance is for one thread at a time.
class CodePage {
public:
    /// @param number Windows' number of the code page. One that the system does not know is
    ///        data::Error `number::Unspecified`, from here on or from the first text that needs it.
    explicit CodePage(unsigned number);
    ~CodePage();
    CodePage(CodePage&&) noexcept;
    CodePage& operator=(CodePage&&) noexcept;

    /// Code page bytes to UTF-8 at `out`.
    /// @param out room for at least 3 * bytes.size() bytes.
    /// @return bytes written.
    std::size_t toUtf8(std::string_view bytes, char* out) const;

    /// Appends UTF-8 as code page bytes and returns how many they are.
    std::size_t appendFromUtf8(std::string_view utf8, std::string& out) const;

private:
    class Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace quillet::rds
