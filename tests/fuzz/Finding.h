#pragma once

#include <cstddef>
#include <string_view>

namespace quillet::fuzz {

/// Ends the program so that the fuzzer keeps the input.
[[noreturn]] void finding(std::string_view what);

/// Watches what an input makes the program allocate. In its scope, the memory that is in use at
/// once may be a small multiple of the input and no more; beyond that it is a finding.
class MemoryBound {
public:
    static constexpr std::size_t PerByte = 32;

    /// Whatever the input: converters take 32 KiB each, an error's text a little.
    static constexpr std::size_t Base = std::size_t{128} << 10U;

    /// @param more what is allowed besides, in bytes.
    explicit MemoryBound(std::size_t inputSize, std::size_t more = 0) noexcept;
    ~MemoryBound();
    MemoryBound(const MemoryBound&) = delete;
    MemoryBound& operator=(const MemoryBound&) = delete;
};

} // namespace quillet::fuzz
