#include "rds/MessageReader.h"

#include "data/AsciiText.h"
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
    const bool matches = data::startsWithIgnoringCase(line, prefix);
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

/// @param line without the header's name.
void readHeadline(std::string_view line, Message& message) {
    if (!takePrefix(line, format::Multipart))
        throw badReply("it does not start as one");
    const std::size_t boundarySize = line.rfind(format::ArgumentCount);
    if (boundarySize == std::string_view::npos || !isBoundary(line.substr(0, boundarySize)))
        throw badReply("it has no boundary");
    message.boundary = line.substr(0, boundarySize);
    message.argumentCount =
        parseNumber(line.substr(boundarySize + format::ArgumentCount.size()), format::MaxArguments);
}

/// Whether a body starts with its first part: a client or server that takes the first lines of a
/// message for HTTP headers has put them there.
bool startsWithPart(std::string_view body) noexcept {
    if (body.starts_with(format::LineEnd))
        body.remove_prefix(format::LineEnd.size());
    return body.starts_with(format::Delimiter);
}

/// What a body is that is no message, in words that end a sentence.
std::string describeForeign(std::string_view start) {
    constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";
    constexpr std::string_view Blanks = " \t\r\n";
    constexpr std::size_t Longest = 60;
    if (start.starts_with('\x1F')) // of gzip
        return "compressed data";
    if (start.starts_with(ByteOrderMark))
        start.remove_prefix(ByteOrderMark.size());
    start = data::trimmed(start, Blanks);
    if (start.starts_with('<'))
        return "a web page";
    std::string text;
    for (std::size_t i = 0; i < start.size() && text.size() < Longest; ++i) {
        if (start[i] >= ' ' && start[i] <= '~')
            text += start[i];
    }
    return text.empty() ? "unknown data" : '"' + text + '"';
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

bool startsAsMessage(std::string_view start, std::string_view contentType) {
    static const std::string headline =
        std::string(format::ContentType) + std::string(format::Multipart);
    static const std::string callError =
        std::string(format::ContentType) + std::string(format::Values);
    static const std::string part = std::string(format::LineEnd) + std::string(format::Delimiter);
    const bool inHead = takePrefix(contentType, format::Multipart);
    bool isCut = false;
    const auto starts = [&](std::string_view expected) {
        isCut = isCut || data::startsWithIgnoringCase(expected, start);
        return data::startsWithIgnoringCase(start, expected);
    };
    if (starts(headline) || starts(callError) || starts(format::ClientVersion) ||
        (inHead && (starts(part) || starts(format::Delimiter))))
        return true;
    if (!isCut)
        throw badReply("the server answered with " + describeForeign(start));
    return false;
}

Message readMessage(std::string_view body, std::string_view contentType) {
    ByteReader in(body);
    Message message;
    const bool headlineInHead = startsWithPart(body);
    if (!headlineInHead) {
        if (in.startsWith(format::ClientVersion))
            readLine(in);
        contentType = readLine(in);
        if (!takePrefix(contentType, format::ContentType))
            throw badReply("it does not start as one");
    }
    readHeadline(contentType, message);
    const std::string lineAndDelimiter =
        std::string(format::LineEnd) + std::string(format::Delimiter) + message.boundary;
    std::string_view delimiter = lineAndDelimiter;
    // Behind an HTTP head, the line end in front of the first one may have been taken for its own.
    if (headlineInHead && in.startsWith(format::Delimiter))
        delimiter.remove_prefix(format::LineEnd.size());
    VariantDecoder decoder(in);
    for (;;) {
        if (!delimiter.starts_with(in.rest().substr(0, delimiter.size())))
            throw badReply("a part of it does not end where its values end");
        in.skip(delimiter.size());
        delimiter = lineAndDelimiter;
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
