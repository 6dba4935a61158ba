#include "rds/CallServer.h"

#include "data/AsciiText.h"
#include "data/Error.h"

#include <cstdint>
#include <exception>
#include <string_view>
#include <utility>

namespace quillet::rds {

namespace {

constexpr std::size_t HeldBack = 64U << 10U;

ScodeError failure(std::uint32_t scode, long number, std::string source, std::string description) {
    ScodeError error;
    error.scode = scode;
    error.innerScode = scodeOf(number);
    error.source.text = std::move(source);
    error.description.text = std::move(description);
    return error;
}

std::string errorText(long number, const std::string& description) {
    return "error " + std::to_string(number) + ": " + description;
}

/// Passes a body on in large pieces, the first one as late as possible.
class HeldBackBody {
public:
    /// @param sent counts the bytes.
    HeldBackBody(HttpReply& reply, std::size_t& sent) : reply_(reply), sent_(sent) {}

    void append(std::string_view bytes) {
        held_ += bytes;
        if (held_.size() >= HeldBack)
            flush();
    }

    void flush() {
        begun_ = true;
        reply_.write(held_);
        sent_ += held_.size();
        held_.clear();
    }

    void replace(std::string body) { held_ = std::move(body); }

    bool begun() const noexcept { return begun_; }

private:
    HttpReply& reply_;
    std::string held_;
    std::size_t& sent_;
    bool begun_ = false;
};

class CountingCursor : public data::Cursor {
public:
    CountingCursor(data::Cursor& cursor, std::size_t& rows) : cursor_(cursor), rows_(rows) {}

    const data::FieldList& fields() const override { return cursor_.fields(); }
    data::Value value(std::size_t column) const override { return cursor_.value(column); }
    bool next() override {
        const bool row = cursor_.next();
        rows_ += row ? 1 : 0;
        return row;
    }

private:
    data::Cursor& cursor_;
    std::size_t& rows_;
};

class ReplyWriter : public CallResult {
public:
    /// @param returned which arguments go back with their values.
    ReplyWriter(HeldBackBody& body, const Call& call, const std::vector<bool>* returned,
                std::stop_token gone, CallRecord& record)
        : sink_([&body](std::string_view bytes) { body.append(bytes); }), call_(call),
          returned_(returned), gone_(std::move(gone)), record_(record) {}

    void rows(data::Cursor& cursor) override {
        writeHead();
        CountingCursor counting(cursor, record_.rows);
        writeReplyResult(sink_, call_.boundary, counting);
        note(std::to_string(record_.rows) + (record_.rows == 1 ? " row" : " rows"));
    }

    void value(const Variant& result) override {
        writeHead();
        writeReplyResult(sink_, call_.boundary, result);
    }

    void note(std::string summary) override { record_.summary = std::move(summary); }

    void failed(const data::Error& error) override {
        record_.error = errorText(error.Number(), error.Description());
    }

    const std::string& peer() const override { return record_.peer; }

    std::stop_token gone() const override { return gone_; }

    void finish() {
        if (!headWritten_)
            writeHead();
        writeReplyEnd(sink_, call_.boundary);
    }

private:
    void writeHead() {
        std::vector<Variant> arguments(call_.arguments.size());
        for (std::size_t i = 0; returned_ != nullptr && i < arguments.size(); ++i) {
            if ((*returned_)[i])
                arguments[i] = call_.arguments[i];
        }
        writeReplyHead(sink_, call_.boundary, arguments);
        headWritten_ = true;
    }

    ByteSink sink_;
    const Call& call_;
    const std::vector<bool>* returned_;
    std::stop_token gone_;
    CallRecord& record_;
    bool headWritten_ = false;
};

} // namespace

CallServer::CallServer(Options options, Observer observer)
    : options_(options), observer_(std::move(observer)) {}

void CallServer::add(const std::string& progId, ServerObject& object) {
    auto& methods = objects_[data::upperCase(progId)];
    for (ServerObject::Method& method : object.methods())
        methods.insert_or_assign(data::upperCase(method.name), std::move(method));
}

void CallServer::handle(const HttpRequest& request, HttpReply& reply) const {
    CallRecord record;
    record.peer = request.peer;
    record.target = request.method + ' ' + request.target;
    const auto start = std::chrono::steady_clock::now();
    const auto observe = [&] {
        record.elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(
            std::chrono::steady_clock::now() - start);
        if (observer_)
            observer_(record);
    };
    try {
        if (!isCallPath(request.target)) {
            record.error = "no such path";
            reply.error(404, "There is nothing here");
        } else if (request.method != "POST") {
            record.error = "not a POST";
            reply.error(405, "Calls are POST requests");
        } else
            answer(request, reply, record);
    } catch (const std::exception& error) {
        record.error = error.what();
        observe();
        throw;
    }
    observe();
}

void CallServer::answer(const HttpRequest& request, HttpReply& reply, CallRecord& record) const {
    HeldBackBody body(reply, record.bytes);
    ScodeError error;
    try {
        Call call = decodeCall(request.target, request.body, request.header("Content-Type"));
        record.target = call.progId + '.' + call.method;
        const ServerObject::Method& method = find(call);
        record.method = method.name;
        ReplyWriter writer(body, call, options_.returnArguments ? &method.byReference : nullptr,
                           request.gone, record);
        method.run(call.arguments, writer);
        writer.finish();
        body.flush();
        return;
    } catch (const CallError& refusal) {
        if (body.begun())
            throw;
        error = refusal.error();
    } catch (const std::exception&) {
        if (body.begun())
            throw;
        const data::Error exception = data::currentError();
        error = failure(scode::Exception, exception.Number(), record.target, exception.what());
    }
    record.error = errorText(failureOf(error).Number(), error.description.text.value_or(""));
    body.replace(encodeCallError(error));
    body.flush();
}

const ServerObject::Method& CallServer::find(const Call& call) const {
    const auto object = objects_.find(data::upperCase(call.progId));
    if (object == objects_.end())
        throw CallError(failure(scode::InvalidArgument, 0, call.progId,
                                "There is no object '" + call.progId + "' on this server."));
    const auto method = object->second.find(data::upperCase(call.method));
    if (method == object->second.end())
        throw CallError(
            failure(scode::UnknownMethod, 0, call.progId,
                    "The object '" + call.progId + "' has no method '" + call.method + "'."));
    const std::size_t expected = method->second.byReference.size();
    if (call.arguments.size() != expected)
        throw CallError(failure(scode::InvalidArgument, 0, call.progId,
                                "The method '" + call.method + "' takes " +
                                    std::to_string(expected) + " arguments."));
    return method->second;
}

} // namespace quillet::rds
