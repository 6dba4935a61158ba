#include "tests/torture/TamperedReply.h"

#include "data/Cursor.h"
#include "data/Error.h"

#include <algorithm>
#include <utility>

namespace quillet::torture {

namespace {

std::size_t below(std::mt19937& random, std::size_t limit) {
    return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random);
}

std::size_t bodyOf(std::string_view reply) {
    constexpr std::string_view HeadEnd = "\r\n\r\n";
    const std::size_t end = reply.find(HeadEnd);
    return end == reply.npos ? reply.size() : end + HeadEnd.size();
}

/// The rows of a recordset, of which the last columns may be left out.
class FirstColumns : public data::Cursor {
public:
    FirstColumns(data::Recordset& rows, std::size_t columns)
        : rows_(rows), fields_(rows.Fields().begin(),
                               rows.Fields().begin() + static_cast<std::ptrdiff_t>(columns)) {}

    const data::FieldList& fields() const override { return fields_; }
    data::Value value(std::size_t column) const override { return rows_.Item(column); }
    bool next() override {
        if (std::exchange(begun_, true) && !rows_.Eof())
            rows_.MoveNext();
        return !rows_.Eof();
    }

private:
    data::Recordset& rows_;
    data::FieldList fields_;
    bool begun_ = false;
};

std::string replyOf(std::string_view status, std::string_view type, std::string_view body) {
    std::string text = "HTTP/1.1 ";
    text.append(status).append("\r\nContent-Type: ").append(type);
    return text.append("\r\nConnection: close\r\n\r\n").append(body);
}

} // namespace

TamperedReply::TamperedReply(std::string reply, const rds::Call& call)
    : reply_(std::move(reply)), call_(call), body_(bodyOf(reply_)) {}

std::string TamperedReply::cut(std::mt19937& random) const {
    constexpr std::size_t LineEnd = 2; // which may be missing: the reply is whole without it
    if (reply_.size() < LineEnd + 2)
        throw data::Error(data::number::Unspecified, "there is nothing to cut");
    return reply_.substr(0, 1 + below(random, reply_.size() - LineEnd - 1));
}

std::string TamperedReply::garbled(std::mt19937& random) const {
    constexpr std::size_t Most = 8;
    if (body_ == reply_.size())
        throw data::Error(data::number::Unspecified, "it has no body");
    std::string text = reply_;
    const std::size_t first = body_ + below(random, text.size() - body_);
    const std::size_t last = std::min(first + 1 + below(random, Most), text.size());
    for (std::size_t i = first; i < last; ++i)
        text[i] = static_cast<char>(static_cast<unsigned char>(text[i]) ^ (1 + below(random, 255)));
    return text;
}

std::string TamperedReply::withoutLastColumn() const {
    data::Recordset all = rows();
    const std::size_t columns = all.Fields().size();
    return withRows(std::move(all), columns - 1, 0);
}

std::string TamperedReply::announcing(int more) const {
    data::Recordset all = rows();
    const std::size_t columns = all.Fields().size();
    return withRows(std::move(all), columns, more);
}

std::string TamperedReply::serverError() {
    return replyOf("500 Internal Server Error", "text/plain", "Internal server error\n");
}

std::string TamperedReply::webPage() {
    return replyOf("200 OK", "text/html",
                   "<!DOCTYPE html>\n<html><head><title>Welcome</title></head>\n"
                   "<body><h1>It works</h1></body></html>\n");
}

data::Recordset TamperedReply::rows() const {
    rds::Reply decoded =
        rds::decodeReply(std::string_view(reply_).substr(body_), call_.arguments.size());
    auto* const object = decoded.result ? std::get_if<rds::Dispatch>(&*decoded.result) : nullptr;
    if (object == nullptr || !object->recordset)
        throw data::Error(data::number::Unspecified, "it has no recordset");
    return std::move(*object->recordset);
}

std::string TamperedReply::withRows(data::Recordset rows, std::size_t columns, int more) const {
    FirstColumns cursor(rows, columns);
    rds::TablegramMetadata metadata = rds::describe(cursor.fields());
    const int announced = more != 0 ? rows.RecordCount() + more : 0;
    if (announced < 0 || (more < 0 && announced == 0)) // 0 is what a server says that does not know
        throw data::Error(data::number::Unspecified, "it has too few rows");
    metadata.rowCount = static_cast<std::uint32_t>(announced);
    std::string text(head());
    const rds::ByteSink sink = [&text](std::string_view bytes) { text += bytes; };
    rds::writeReplyHead(sink, call_.boundary, std::vector<rds::Variant>(call_.arguments.size()));
    rds::writeReplyResult(sink, call_.boundary, cursor, metadata);
    rds::writeReplyEnd(sink, call_.boundary);
    return text;
}

} // namespace quillet::torture
