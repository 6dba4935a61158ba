#include "data/Error.h"
#include "rds/ByteWriter.h"
#include "rds/tablegram/CodePage.h"

#include <cerrno>
#include <iconv.h>
#include <optional>

namespace quillet::rds {

namespace {

std::string iconvName(unsigned codePage) {
    constexpr unsigned Utf8 = 65001;
    return codePage == Utf8 ? "UTF-8" : "CP" + std::to_string(codePage);
}

/// One direction of a conversion.
class Converter {
public:
    Converter(const std::string& to, const std::string& from)
        : handle_(iconv_open(to.c_str(), from.c_str())) {
        // NOLINTNEXTLINE(performance-no-int-to-ptr): iconv's own error value
        if (handle_ == reinterpret_cast<iconv_t>(-1))
            throw data::Error(data::number::Unspecified,
                              "The system cannot convert from " + from + " to " + to + ".");
    }
    ~Converter() { iconv_close(handle_); }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    /// Converts as much as can be; stops behind the output's end or before a bad input byte.
    /// @return true when no input is left.
    bool convert(std::string_view& in, char*& out, std::size_t& room) {
        char* next = const_cast<char*>(in.data());
        std::size_t left = in.size();
        const std::size_t result = iconv(handle_, &next, &left, &out, &room);
        failure_ = result == static_cast<std::size_t>(-1) ? errno : 0;
        in.remove_prefix(in.size() - left);
        return failure_ == 0;
    }

    bool outputFull() const noexcept { return failure_ == E2BIG; }
    bool inputIncomplete() const noexcept { return failure_ == EINVAL; }

private:
    iconv_t handle_;
    int failure_ = 0;
};

std::size_t lengthOfCharacter(std::string_view utf8) noexcept {
    std::size_t length = 1;
    while (length < utf8.size() && (static_cast<unsigned char>(utf8[length]) & 0xC0U) == 0x80U)
        ++length;
    return length;
}

} // namespace

/// A converter takes 32 KiB, and most texts are ASCII: it is made when one is not.
class CodePage::Impl {
public:
    explicit Impl(unsigned number) : name_(iconvName(number)) {}

    Converter& decoder() {
        if (!decoder_)
            decoder_.emplace("UTF-8", name_);
        return *decoder_;
    }

    Converter& encoder() {
        if (!encoder_)
            encoder_.emplace(name_, "UTF-8");
        return *encoder_;
    }

private:
    std::string name_;
    std::optional<Converter> decoder_, encoder_;
};

CodePage::CodePage(unsigned number) : impl_(std::make_unique<Impl>(number)) {}
CodePage::~CodePage() = default;
CodePage::CodePage(CodePage&&) noexcept = default;
CodePage& CodePage::operator=(CodePage&&) noexcept = default;

std::size_t CodePage::toUtf8(std::string_view bytes, char* out) const {
    if (isAscii(bytes))
        return bytes.copy(out, bytes.size());
    Converter& decoder = impl_->decoder();
    char* next = out;
    std::size_t room = 3 * bytes.size();
    while (!decoder.convert(bytes, next, room)) {
        if (decoder.outputFull())
            break; // a code page whose characters outgrow the documented room
        constexpr std::string_view Replacement = "\xEF\xBF\xBD";
        if (room < Replacement.size())
            break;
        next += Replacement.copy(next, Replacement.size());
        room -= Replacement.size();
        if (decoder.inputIncomplete())
            break;
        bytes.remove_prefix(1);
    }
    return static_cast<std::size_t>(next - out);
}

std::size_t CodePage::appendFromUtf8(std::string_view utf8, std::string& out) const {
    const std::size_t before = out.size();
    if (isAscii(utf8)) {
        out.append(utf8);
        return utf8.size();
    }
    Converter& encoder = impl_->encoder();
    bool done = false;
    while (!done) {
        char piece[1024];
        char* next = piece;
        std::size_t room = sizeof piece;
        done = encoder.convert(utf8, next, room);
        out.append(piece, next);
        if (!done && !encoder.outputFull()) {
            out.push_back('?');
            utf8.remove_prefix(lengthOfCharacter(utf8));
        }
    }
    return out.size() - before;
}

} // namespace quillet::rds
