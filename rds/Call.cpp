#include "rds/Call.h"

#include "data/AsciiText.h"
#include "data/Error.h"
#include "rds/MessageFormat.h"
#include "rds/MessageReader.h"
#include "rds/MessageWriter.h"
#include "rds/VariantCodec.h"
#include "rds/tablegram/TablegramWriter.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <random>

namespace quillet::rds {

namespace {

constexpr std::string_view Endpoint = "/msadc/msadcs.dll/";

std::string hex(std::uint32_t value) {
    std::array<char, 12> text{};
    std::snprintf(text.data(), text.size(), "0x%08X", static_cast<unsigned>(value));
    return text.data();
}

std::string describe(const ScodeError& error) {
    if (error.description.text && !error.description.text->empty())
        return *error.description.text;
    return "The remote call failed (" + hex(error.scode) + ").";
}

/// A run-time error's number in an HRESULT, and back: up to 65535 it is that of a control.
constexpr std::uint32_t ControlFacility = 0x800A0000;

long numberOf(std::uint32_t scode) {
    if (scode > ControlFacility && scode - ControlFacility <= 0xFFFF)
        return static_cast<long>(scode - ControlFacility);
    return scode == 0 ? data::number::Unspecified
                      : static_cast<long>(static_cast<std::int32_t>(scode));
}

ScodeError malformed(const std::string& why) {
    ScodeError error;
    error.scode = scode::InvalidArgument;
    error.description = BStr{why};
    return error;
}

/// ProgID and method of a request's path.
void splitPath(std::string_view path, Call& call) {
    const std::string_view name =
        isCallPath(path) ? path.substr(Endpoint.size()) : std::string_view();
    const std::size_t dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0 || dot + 1 == name.size())
        throw CallError(malformed("The path names no method of an object."));
    call.progId = name.substr(0, dot);
    call.method = name.substr(dot + 1);
}

} // namespace

data::Error failureOf(const ScodeError& error) {
    const bool wrapped = error.scode == scode::Exception && error.innerScode != 0;
    const std::uint32_t code = wrapped ? error.innerScode : error.scode;
    return {numberOf(code), describe(error)};
}

std::uint32_t scodeOf(long number) noexcept {
    return number > 0 && number <= 0xFFFF ? ControlFacility | static_cast<std::uint32_t>(number)
                                          : static_cast<std::uint32_t>(number);
}

CallError::CallError(ScodeError error)
    : std::runtime_error(describe(error)), error_(std::move(error)) {}

bool isCallPath(std::string_view path) noexcept {
    return data::startsWithIgnoringCase(path, Endpoint);
}

std::string callPath(const Call& call) {
    return std::string(Endpoint) + call.progId + "." + call.method;
}

std::string newBoundary() {
    // A part of the protocol's alphabet; its punctuation only makes traces harder to read.
    constexpr std::string_view Alphabet = "abcdefghijklmnopqrstuvwxyz0123456789";
    constexpr std::size_t Size = 20;
    std::random_device random;
    std::uniform_int_distribution<std::size_t> index(0, Alphabet.size() - 1);
    std::string boundary(Size, ' ');
    std::generate(boundary.begin(), boundary.end(), [&] { return Alphabet[index(random)]; });
    return boundary;
}

std::string encodeCall(const Call& call) {
    ByteWriter out;
    out.bytes(format::ClientVersion);
    out.bytes("01.06");
    out.bytes(format::LineEnd);
    writeHeadline(out, call.boundary, call.arguments.size());
    writeArguments(out, call.boundary, call.arguments);
    writeClosingDelimiter(out, call.boundary);
    return out.take();
}

Call decodeCall(std::string_view path, std::string_view body, std::string_view contentType) {
    Call call;
    splitPath(path, call);
    try {
        Message message = readMessage(body, contentType);
        if (message.values.size() != message.argumentCount)
            throw badReply("it has " + std::to_string(message.values.size()) +
                           " arguments instead of " + std::to_string(message.argumentCount));
        call.boundary = std::move(message.boundary);
        call.arguments = std::move(message.values);
    } catch (const data::Error& error) {
        throw CallError(malformed(error.Description()));
    }
    std::reverse(call.arguments.begin(), call.arguments.end());
    return call;
}

Reply decodeReply(std::string_view body, std::size_t arguments, std::string_view contentType) {
    startsAsMessage(body, contentType); // says what it is if not
    if (isCallError(body))
        throw failureOf(readCallError(body));
    Message message = readMessage(body, contentType);
    if (message.argumentCount != arguments)
        throw badReply("it is for " + std::to_string(message.argumentCount) +
                       " arguments instead of " + std::to_string(arguments));
    if (message.values.size() != arguments && message.values.size() != arguments + 1)
        throw badReply("it has " + std::to_string(message.values.size()) + " values for " +
                       std::to_string(arguments) + " arguments");
    Reply reply;
    if (message.values.size() > arguments) {
        reply.result = std::move(message.values.back());
        message.values.pop_back();
    }
    reply.arguments = std::move(message.values);
    std::reverse(reply.arguments.begin(), reply.arguments.end());
    return reply;
}

void writeReplyHead(const ByteSink& sink, const std::string& boundary,
                    const std::vector<Variant>& arguments) {
    ByteWriter out;
    writeHeadline(out, boundary, arguments.size());
    writeArguments(out, boundary, arguments);
    sink(out.view());
}

void writeReplyResult(const ByteSink& sink, const std::string& boundary, const Variant& result) {
    ByteWriter out;
    writePartHead(out, boundary);
    encodeValue(result, out);
    sink(out.view());
}

void writeReplyResult(const ByteSink& sink, const std::string& boundary, data::Cursor& rows) {
    writeReplyResult(sink, boundary, rows, describeResult(rows.fields()));
}

void writeReplyResult(const ByteSink& sink, const std::string& boundary, data::Cursor& rows,
                      const TablegramMetadata& metadata) {
    TablegramWriter writer(sink, metadata);
    ByteWriter out;
    writePartHead(out, boundary);
    out.bytes(recordsetHead());
    sink(out.view());
    while (rows.next())
        writer.writeRow(rows);
    writer.finish();
}

void writeReplyEnd(const ByteSink& sink, const std::string& boundary) {
    ByteWriter out;
    writeClosingDelimiter(out, boundary);
    sink(out.view());
}

std::string encodeCallError(const ScodeError& error) {
    ByteWriter out;
    out.bytes(format::ContentType);
    out.bytes(format::Values);
    out.bytes(format::LineEnd);
    out.bytes(format::ContentLength);
    out.bytes(std::to_string(format::CountedErrorBytes));
    out.bytes(format::LineEnd);
    out.bytes(format::LineEnd);
    encodeValue(Variant(error), out);
    return out.take();
}

} // namespace quillet::rds
