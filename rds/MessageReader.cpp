#include "rds/MessageReader.h"

#include "db/AsciiText.h"
#include "rds/ByteReader.h"
#include "rds/MessageFormat.h"
#include "rds/VariantCodec.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <span>

namespace quillet::rds {

namespace {

/// Takes a prefix off a line if it is there in any letter case.
bool takePrefix(std::string_view& line, std::string_view prefix) noexcept {
    const bool matches = db::startsWithIgnoringCase(line, prefix);
    if (matches)
        line.remove_prefix(prefix.size());
    return matches;
}

std::string_view readLine(ByteReader& in) {
    constexpr std::size_t Longest = 1024;
    const std::string_view ahead = in.rest().substr(0, Longest);
    const std::size_t end = ahead.find(format::LineEnd);
    if (end == std::string_view::npos) {
        if (ahead.size() < Longest)
            in.failCutShort();
        throw badReply("a line of its frame is too long");
    }
    const std::string_view line = in.bytes(end);
    in.skip(format::LineEnd.size());
    return line;
}

std::size_t parseNumber(std::string_view text, std::size_t largest) {
    std::size_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || value > largest)
        throw badReply("'" + std::string(text) + "' is no number that fits there");
    return value;
}

/// Servers have been seen to take shorter boundaries than the protocol's 20 characters.
bool isBoundary(std::string_view text) noexcept {
    constexpr std::size_t Longest = 70; // of MIME
    return !text.empty() && text.size() <= Longest &&
           std::all_of(text.begin(), text.end(), [](char c) { return c > ' ' && c <= '~'; });
}

void readHeadline(ByteReader& in, Message& message) {
    std::string_view line = readLine(in);
    if (!takePrefix(line, format::ContentType) || !takePrefix(line, format::Multipart))
        throw badReply("it does not start as one");
    const std::size_t boundarySize = line.rfind(format::ArgumentCount);
    if (boundarySize == std::string_view::npos || !isBoundary(line.substr(0, boundarySize)))
        throw badReply("it has no boundary");
    message.boundary = line.substr(0, boundarySize);
    message.argumentCount =
        parseNumber(line.substr(boundarySize + format::ArgumentCount.size()), format::MaxArguments);
}

/// Reads the lines of a part up to the blank one.
/// @return its Content-Length, if it has one.
std::optional<std::size_t> readPartHead(ByteReader& in) {
    std::optional<std::size_t> length;
    bool typed = false;
    for (std::string_view line = readLine(in); !line.empty(); line = readLine(in)) {
        if (takePrefix(line, format::ContentLength))
            length = parseNumber(line, static_cast<std::size_t>(-1));
        else if (takePrefix(line, format::ContentType))
            typed = line == format::Values;
    }
    if (!typed)
        throw badReply("a part of it holds no values");
    return length;
}

/// Compares a Content-Length with the bytes that the values took. Servers leave out a part of what
/// an error has, in a recorded reply all but its code, so where there is one it tells nothing.
void checkLength(std::size_t length, std::size_t consumed, std::span<const Variant> values) {
    const bool hasError = std::any_of(values.begin(), values.end(), [](const Variant& value) {
        return std::holds_alternative<ScodeError>(value);
    });
    if (length != consumed && !hasError)
        throw badReply("a part of it has " + std::to_string(consumed) + " bytes instead of " +
                       std::to_string(length));
}

} // namespace

bool isCallError(std::string_view body) noexcept {
    return takePrefix(body, format::ContentType) && body.starts_with(format::Values);
}

ScodeError readCallError(std::string_view body) {
    ByteReader in(body);
    readPartHead(in); // its length tells nothing, see checkLength()
    const Variant value = VariantDecoder(in).next();
    const auto* error = std::get_if<ScodeError>(&value);
    if (error == nullptr)
        throw badReply("it is a single value, but no error");
    return *error;
}

Message readMessage(std::string_view body) {
    ByteReader in(body);
    Message message;
    if (in.startsWith(format::ClientVersion))
        readLine(in);
    readHeadline(in, message);
    const std::string delimiter =
        std::string(format::LineEnd) + std::string(format::Delimiter) + message.boundary;
    VariantDecoder decoder(in);
    for (;;) {
        if (!std::string_view(delimiter).starts_with(in.rest().substr(0, delimiter.size())))
            throw badReply("a part of it does not end where its values end");
        in.skip(delimiter.size());
        if (in.startsWith(format::Delimiter)) {
            in.skip(format::Delimiter.size());
            if (!readLine(in).empty())
                throw badReply("its closing delimiter is damaged");
            return message;
        }
        if (!readLine(in).empty())
            throw badReply("a delimiter of it is damaged");
        const std::optional<std::size_t> length = readPartHead(in);
        const std::size_t start = in.position();
        const std::size_t before = message.values.size();
        // No type code looks like the line end in front of a delimiter.
        while (!in.startsWith(format::LineEnd)) {
            if (message.values.size() > message.argumentCount) // there may be a result
                throw badReply("it has more values than arguments");
            message.values.push_back(decoder.next());
        }
        if (message.values.size() == before)
            throw badReply("a part of it is empty");
        if (length)
            checkLength(*length, in.position() - start, std::span(message.values).subspan(before));
    }
}

} // namespace quillet::rds
