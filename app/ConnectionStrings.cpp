#include "app/ConnectionStrings.h"

namespace quillet::app {

std::string storeConnectionString(const std::string& folder) {
    return "PROVIDER=MSDataShape;Driver={Microsoft Access Driver (*.mdb)};Dbq=food.MDB;"
           "DefaultDir=" +
           folder + ";Uid=Admin;pwd=tavro5531";
}

std::string serverConnectionString(const std::string& server, const std::string& database,
                                   const std::string& user) {
    return "DRIVER={MySQL ODBC 3.51 Driver};SERVER=" + server + ";DATABASE=" + database +
           ";UID=" + user + ";PWD=mq5307;OPTION=16386";
}

} // namespace quillet::app
