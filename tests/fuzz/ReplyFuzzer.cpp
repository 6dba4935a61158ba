#include "data/Error.h"
#include "rds/Call.h"
#include "rds/VariantCodec.h"
#include "tests/fuzz/Finding.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// The first byte is the number of arguments, the rest any bytes as a reply's body. A cut reply is
// either an error or, when only bytes behind its end are missing, the same reply.

namespace {

using namespace quillet;

/// All that a reply says, as comparable bytes.
std::optional<std::string> contentOf(std::string_view body, std::size_t arguments) {
    const auto decoded = [&] {
        const fuzz::MemoryBound bound(body.size(), fuzz::MemoryBound::OfValues);
        return rds::decodeReply(body, arguments);
    };
    try {
        const rds::Reply reply = decoded();
        rds::ByteWriter content;
        for (const rds::Variant& argument : reply.arguments)
            rds::encodeValue(argument, content);
        if (reply.result)
            rds::encodeValue(*reply.result, content);
        return content.take();
    } catch (const data::Error& error) {
        if (error.Number() == 0)
            fuzz::finding("an error has the number of success");
        return std::nullopt;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t MostArguments = 12;
    if (size == 0)
        return 0;
    const std::size_t arguments = data[0] % (MostArguments + 1);
    const std::string_view body(reinterpret_cast<const char*>(data + 1), size - 1);
    const std::optional<std::string> whole = contentOf(body, arguments);
    if (!whole)
        return 0;
    // The end and one place somewhere in it, which the input itself decides.
    for (const std::size_t cut : {body.size() - 1, (data[0] + 31 * body.size()) % body.size()}) {
        const std::optional<std::string> part = contentOf(body.substr(0, cut), arguments);
        if (part && part != whole)
            fuzz::finding("a cut reply is read as another one");
    }
    return 0;
}
