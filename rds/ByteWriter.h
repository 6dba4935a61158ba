#pragma once

#include "data/Utf16.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace quillet::rds {

/// Where encoded bytes go, piece by piece.
using ByteSink = std::function<void(std::string_view)>;

/// Whether every byte is below 0x80, so that the text is the same in every code page.
inline bool isAscii(std::string_view text) noexcept {
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

/// Collects little-endian numbers and runs of bytes.
class ByteWriter {
public:
    void u8(std::uint8_t value) { number(value); }
    void u16(std::uint16_t value) { number(value); }
    void u32(std::uint32_t value) { number(value); }
    void u64(std::uint64_t value) { number(value); }
    void i16(std::int16_t value) { number(static_cast<std::uint16_t>(value)); }
    void i32(std::int32_t value) { number(static_cast<std::uint32_t>(value)); }
    void i64(std::int64_t value) { number(static_cast<std::uint64_t>(value)); }
    void r4(float value) { number(std::bit_cast<std::uint32_t>(value)); }
    void r8(double value) { number(std::bit_cast<std::uint64_t>(value)); }
    /// The lowest `size` bytes of a number, 1 to 8.
    void low(std::uint64_t value, std::size_t size) {
        char run[sizeof value];
        for (std::size_t i = 0; i < sizeof value; ++i)
            run[i] = static_cast<char>(value >> (8 * i));
        bytes_.append(run, size);
    }
    void bytes(std::string_view run) { bytes_.append(run); }
    void fill(std::size_t count, char byte) { bytes_.append(count, byte); }

    /// Appends a text as UTF-16LE and returns the number of bytes it took.
    std::size_t utf16(std::string_view utf8) {
        const std::size_t before = bytes_.size();
        bytes_.resize(before + 2 * utf8.size());
        const std::size_t taken = data::utf8ToUtf16Le(utf8, bytes_.data() + before);
        bytes_.resize(before + taken);
        return taken;
    }

    /// Overwrites a byte, or four, at `position` that have been written as a place holder.
    void patchU8(std::size_t position, std::uint8_t value) {
        bytes_[position] = static_cast<char>(value);
    }
    void patchU32(std::size_t position, std::uint32_t value) {
        for (std::size_t i = 0; i < 4; ++i)
            bytes_[position + i] = static_cast<char>(value >> (8 * i));
    }

    std::size_t size() const noexcept { return bytes_.size(); }
    std::string_view view() const noexcept { return bytes_; }
    void clear() noexcept { bytes_.clear(); }
    std::string take() { return std::move(bytes_); }

private:
    template <typename Number>
    void number(Number value) {
        low(value, sizeof(Number));
    }

    std::string bytes_;
};

} // namespace quillet::rds
