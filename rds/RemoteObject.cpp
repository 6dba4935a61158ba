#include "rds/RemoteObject.h"

#include "data/Error.h"
#include "rds/MessageReader.h"

#include <utility>

namespace quillet::rds {

namespace {

constexpr long ObjectVariableNotSet = 91;

/// The value of an argument that has come back. One that is not, or is no such value, keeps its
/// own: the call has been made, and its result alone says how it went.
std::string returned(const Variant& argument, const std::string& kept) {
    if (argument.isEmpty())
        return kept;
    try {
        return argument.toText();
    } catch (const data::Error&) {
        return kept;
    }
}

std::vector<std::string> returned(const Variant& argument, const std::vector<std::string>& kept) {
    const auto* array = std::get_if<VariantArray>(&argument);
    if (array == nullptr || array->isNull)
        return kept;
    try {
        std::vector<std::string> texts;
        texts.reserve(array->elements.size());
        for (const Variant& element : array->elements)
            texts.push_back(element.toText());
        return texts;
    } catch (const data::Error&) {
        return kept;
    }
}

bool toBoolean(const Variant& value) {
    if (const auto* boolean = std::get_if<bool>(&value))
        return *boolean;
    if (const auto* number = std::get_if<std::int16_t>(&value))
        return *number != 0;
    if (const auto* number = std::get_if<std::int32_t>(&value))
        return *number != 0;
    if (value.isEmpty())
        return false;
    throw data::typeMismatch();
}

} // namespace

RemoteObject::RemoteObject(std::string progId, std::string server, HttpClient client)
    : progId_(std::move(progId)), server_(std::move(server)), client_(client) {}

data::Recordset RemoteObject::Getsql(std::string& sql, std::int16_t first, std::int16_t second,
                                     Variant& information, std::string& connection) {
    Reply reply = invoke("Getsql", {Variant::string(sql), Variant(first), Variant(second),
                                    information, Variant::string(connection)});
    const auto* object = reply.result ? std::get_if<Dispatch>(&*reply.result) : nullptr;
    if (object == nullptr)
        throw data::typeMismatch();
    if (!object->recordset)
        throw data::Error(ObjectVariableNotSet, "Object variable or With block variable not set");
    std::string newSql = returned(reply.arguments[0], sql);
    std::string newConnection = returned(reply.arguments[4], connection);
    sql = std::move(newSql);
    connection = std::move(newConnection);
    if (!reply.arguments[3].isEmpty())
        information = std::move(reply.arguments[3]);
    return std::move(*object->recordset);
}

bool RemoteObject::PUTSQL(std::vector<std::string>& statements, std::string& errorText,
                          std::string& connection) {
    const Reply reply = invoke("PUTSQL", {Variant::strings(statements), Variant::string(errorText),
                                          Variant::string(connection)});
    if (!reply.result)
        throw data::typeMismatch();
    const bool executed = toBoolean(*reply.result);
    auto newStatements = returned(reply.arguments[0], statements);
    std::string newErrorText = returned(reply.arguments[1], errorText);
    std::string newConnection = returned(reply.arguments[2], connection);
    statements = std::move(newStatements);
    errorText = std::move(newErrorText);
    connection = std::move(newConnection);
    return executed;
}

Reply RemoteObject::invoke(const std::string& method, std::vector<Variant> arguments) {
    Call call{progId_, method, std::move(arguments), newBoundary()};
    const HttpAnswer answer =
        client_.post(server_, callPath(call), encodeCall(call), [](const HttpAnswer& soFar) {
            return startsAsMessage(soFar.body, soFar.contentType);
        });
    return decodeReply(answer.body, call.arguments.size(), answer.contentType);
}

} // namespace quillet::rds
