#include "headoffice/CommandObject.h"

#include "data/Error.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace quillet::headoffice {

namespace {

std::vector<std::string> statementsOf(const rds::Variant& argument) {
    const auto* array = std::get_if<rds::VariantArray>(&argument);
    if (array == nullptr || array->isNull || array->dimensions.size() > 1 ||
        array->elementType == rds::VarType::Empty || array->elementType == rds::VarType::Null)
        throw data::typeMismatch();
    std::vector<std::string> statements;
    std::int64_t index = array->dimensions.empty() ? 0 : array->dimensions.front().lowerBound;
    for (const rds::Variant& element : array->elements) {
        std::string statement = index++ < 1 ? std::string() : element.toText();
        if (statement.find_first_not_of(" \t\r\n") != std::string::npos)
            statements.push_back(std::move(statement));
    }
    return statements;
}

} // namespace

std::vector<rds::ServerObject::Method> CommandObject::methods() {
    return {{"PUTSQL", {true, true, true}, [this](Arguments& arguments, rds::CallResult& result) {
                 putsql(arguments, result);
             }}};
}

void CommandObject::putsql(Arguments& arguments, rds::CallResult& result) {
    const auto statements = statementsOf(arguments[0]);
    const std::string count =
        std::to_string(statements.size()) + (statements.size() == 1 ? " statement" : " statements");
    bool executed = false;
    try {
        const DatabaseLogin login = access_.loginOf(arguments[2].toText());
        std::vector<UpdateStatement> updates;
        for (const std::string& statement : statements)
            updates.push_back(guard_.require(statement));
        pool_.lend(login, result.gone()).write(statements);
        executed = true;
        for (const UpdateStatement& update : updates)
            written_(update, result.peer());
        result.note(count);
    } catch (const data::Error& error) {
        arguments[1] = rds::Variant::string(error.Description());
        result.note(count + " refused");
        result.failed(error);
    }
    result.value(executed);
}

} // namespace quillet::headoffice
