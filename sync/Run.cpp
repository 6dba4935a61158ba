#include "sync/Run.h"

#include "rds/RemoteObject.h"

namespace quillet::sync {

Run::Run(db::VelkDBPro& store, Settings& settings, db::DownloadLog downloadLog, db::Clock clock)
    : store_(store), settings_(settings), downloadLog_(std::move(downloadLog)),
      clock_(std::move(clock)) {}

void Run::clearStatements() {
    statements.assign(1, std::string());
    DelList.assign(1, std::string());
}

db::Recordset Run::queryServer(std::string ServerSql) {
    if (!DataSpace)
        DataSpace.emplace();
    rds::RemoteObject RemoteObj =
        DataSpace->CreateObject(headOffice.remoteObjectName, "http://" + headOffice.serverAddress);
    rds::Variant unread;
    // By reference like the query, but a copy: what one call returns must not steer the next.
    std::string connectionString = headOffice.connectionString;
    return RemoteObj.Getsql(ServerSql, 0, 1, unread, connectionString);
}

void Run::WriteDownloadLog(const std::string& title, const std::string& statement, long errNumber,
                           const std::string& errDescription) const noexcept {
    downloadLog_.write(title, statement, errNumber, errDescription);
}

} // namespace quillet::sync
