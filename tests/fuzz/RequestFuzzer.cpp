#include "data/Error.h"
#include "rds/Call.h"
#include "rds/VariantCodec.h"
#include "tests/fuzz/Finding.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// The first line is a request's path, the rest any bytes as its body. A call that is read can be
// written, and what is written reads as the same.

namespace {

using namespace quillet;

std::optional<rds::Call> read(std::string_view path, std::string_view body) {
    try {
        const fuzz::MemoryBound bound(path.size() + body.size(), fuzz::MemoryBound::OfValues);
        return rds::decodeCall(path, body);
    } catch (const rds::CallError&) {
        return std::nullopt;
    }
}

std::optional<std::string> write(const rds::Call& call) {
    try {
        return rds::encodeCall(call);
    } catch (const data::Error&) {
        return std::nullopt; // a recordset with a number that its column cannot hold
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const std::size_t lineEnd = std::min(input.find('\n'), input.size());
    const std::optional<rds::Call> call =
        read(input.substr(0, lineEnd), input.substr(std::min(lineEnd + 1, input.size())));
    if (!call)
        return 0;
    // Twice, since the first writing may put a recordset's numbers into their columns' scale.
    std::optional<rds::Call> settled = call;
    std::optional<std::string> before;
    for (int round = 0; round < 3; ++round) {
        const std::optional<std::string> written = write(*settled);
        if (!written)
            return 0;
        settled = read(rds::callPath(*settled), *written);
        if (!settled)
            fuzz::finding("what is written cannot be read");
        if (round > 1 && before != written)
            fuzz::finding("a call changes in writing");
        before = written;
    }
    if (settled->arguments.size() != call->arguments.size())
        fuzz::finding("arguments are lost in writing");
    return 0;
}
