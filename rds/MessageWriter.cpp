#include "rds/MessageWriter.h"

#include "data/Error.h"
#include "rds/MessageFormat.h"
#include "rds/VariantCodec.h"

#include <string>

namespace quillet::rds {

namespace {

void writeDelimiter(ByteWriter& out, std::string_view boundary) {
    out.bytes(format::LineEnd);
    out.bytes(format::Delimiter);
    out.bytes(boundary);
}

void writeContentType(ByteWriter& out, std::string_view boundary) {
    writeDelimiter(out, boundary);
    out.bytes(format::LineEnd);
    out.bytes(format::ContentType);
    out.bytes(format::Values);
    out.bytes(format::LineEnd);
}

} // namespace

void writeHeadline(ByteWriter& out, std::string_view boundary, std::size_t arguments) {
    if (arguments > format::MaxArguments)
        throw data::Error(data::number::InvalidArgument,
                          "A remote call cannot have " + std::to_string(arguments) + " arguments.");
    out.bytes(format::ContentType);
    out.bytes(format::Multipart);
    out.bytes(boundary);
    out.bytes(format::ArgumentCount);
    out.bytes(std::to_string(arguments));
    out.bytes(format::LineEnd);
}

void writeArguments(ByteWriter& out, std::string_view boundary,
                    const std::vector<Variant>& arguments) {
    for (auto argument = arguments.rbegin(); argument != arguments.rend();) {
        if (!argument->isGroupable()) {
            writePartHead(out, boundary);
            encodeValue(*argument++, out);
            continue;
        }
        ByteWriter group;
        while (argument != arguments.rend() && argument->isGroupable())
            encodeValue(*argument++, group);
        writeContentType(out, boundary);
        out.bytes(format::ContentLength);
        out.bytes(std::to_string(group.size()));
        out.bytes(format::LineEnd);
        out.bytes(format::LineEnd);
        out.bytes(group.view());
    }
}

void writePartHead(ByteWriter& out, std::string_view boundary) {
    writeContentType(out, boundary);
    out.bytes(format::LineEnd);
}

void writeClosingDelimiter(ByteWriter& out, std::string_view boundary) {
    writeDelimiter(out, boundary);
    out.bytes(format::Delimiter);
    out.bytes(format::LineEnd);
}

} // namespace quillet::rds
