#include "receivers/ReceiveOptionNames.h"

#include "receivers/Titles.h"
#include "sync/Receiver.h"

namespace quillet::receivers {

namespace {

// Server row: 0 code, 1 name. Server and store have the same table.
constexpr const char* Select = " SELECT PROP_CODE,PROP_NAME FROM PROP ";

const sync::SqlTemplate Insert(" INSERT INTO PROP (PROP_CODE,PROP_NAME) VALUES ("
                               "'{0}','{1}') ");

const sync::SqlTemplate Update(" UPDATE PROP SET "
                               " PROP_NAME = '{1}' WHERE PROP_CODE = '{0}' ");

} // namespace

bool ReceiveOptionNames(sync::Run& run) {
    return sync::receive(run, {.title = OptionNamesTitle,
                               .ServerSql = Select,
                               .StoreSql = Select,
                               .rowTotal = sync::RowTotalRule::Add,
                               .criteria = sync::SqlTemplate(" PROP_CODE = '{0}' "),
                               .insert = Insert,
                               .update = Update});
}

} // namespace quillet::receivers
