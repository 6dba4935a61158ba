#pragma once

#include "data/Error.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace quillet::rds {

/// Reads little-endian numbers and runs of bytes from a received message. Every read is checked
/// against the end: one past it is an Error `number::Unspecified`, "The reply is cut short ...".
class ByteReader {
public:
    /// @param bytes must outlive the reader and whatever bytes() returned.
    explicit ByteReader(std::string_view bytes) noexcept : bytes_(bytes) {}

    std::size_t position() const noexcept { return position_; }
    std::size_t remaining() const noexcept { return bytes_.size() - position_; }
    std::string_view rest() const noexcept { return bytes_.substr(position_); }

    bool startsWith(std::string_view text) const noexcept { return rest().starts_with(text); }

    /// The next byte, which stays unread.
    std::uint8_t peek() const {
        require(1);
        return static_cast<std::uint8_t>(bytes_[position_]);
    }

    std::uint8_t u8() { return number<std::uint8_t>(); }
    std::uint16_t u16() { return number<std::uint16_t>(); }
    std::uint32_t u32() { return number<std::uint32_t>(); }
    std::uint64_t u64() { return number<std::uint64_t>(); }
    std::int16_t i16() { return static_cast<std::int16_t>(u16()); }
    std::int32_t i32() { return static_cast<std::int32_t>(u32()); }
    std::int64_t i64() { return static_cast<std::int64_t>(u64()); }
    float r4() { return std::bit_cast<float>(u32()); }
    double r8() { return std::bit_cast<double>(u64()); }

    std::string_view bytes(std::uint64_t count) {
        require(count);
        const std::string_view run = bytes_.substr(position_, static_cast<std::size_t>(count));
        position_ += run.size();
        return run;
    }

    void skip(std::uint64_t count) { bytes(count); }

    /// A reader of the next `count` bytes alone, which count as read here.
    ByteReader block(std::uint64_t count) { return ByteReader(bytes(count)); }

    [[noreturn]] void failCutShort() const {
        throw data::Error(data::number::Unspecified,
                          "The reply is cut short at byte " + std::to_string(bytes_.size()) + ".");
    }

private:
    void require(std::uint64_t count) const {
        if (count > remaining())
            failCutShort();
    }

    template <typename Number>
    Number number() {
        require(sizeof(Number));
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < sizeof(Number); ++i)
            value |= static_cast<std::uint64_t>(static_cast<std::uint8_t>(bytes_[position_ + i]))
                     << (8 * i);
        position_ += sizeof(Number);
        return static_cast<Number>(value);
    }

    std::string_view bytes_;
    std::size_t position_ = 0;
};

/// The error for a message that is whole but cannot be right.
inline data::Error badReply(const std::string& what) {
    return {data::number::Unspecified, "The reply cannot be read: " + what + "."};
}

} // namespace quillet::rds
