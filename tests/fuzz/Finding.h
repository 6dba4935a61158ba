#pragma once

#include "rds/VariantCodec.h"

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

    /// What the free number of a call's values may take besides.
    static constexpr std::size_t OfValues = rds::VariantDecoder::FreeValues * sizeof(rds::Variant);

    /// @param more what is allowed besides, in bytes.
    explicit MemoryBound(std::size_t inputSize, std::size_t more = 0) noexcept;
    ~MemoryBound();
    MemoryBound(const MemoryBound&) = delete;
    MemoryBound& operator=(const MemoryBound&) = delete;
};

} // namespace quillet::fuzz
