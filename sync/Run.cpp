#include "sync/Run.h"

#include "rds/RemoteObject.h"
#include "sync/LeadingNumber.h"
#include "sync/StatementSubject.h"

#include <chrono>

namespace quillet::sync {

namespace {

constexpr const char* CommandObjectName = "quorin.demon";

/// A command is one small statement, and start-up waits for it.
constexpr std::chrono::seconds CommandQuietTime{30};

rds::DataSpace dataSpaceOf(Run& run, const rds::HttpClient::Limits& limits) {
    return rds::DataSpace(limits, [&run] {
        run.yield();
        return !run.isEnding();
    });
}

} // namespace

Run::Run(db::VelkDBPro& store, Settings& settings, logs::DownloadLog downloadLog, logs::Clock clock,
         RunObserver* observer)
    : store_(store), settings_(settings), downloadLog_(std::move(downloadLog)),
      clock_(std::move(clock)), observer_(observer != nullptr ? observer : &nobody_) {}

rds::RemoteObject Run::createObject(const std::string& progId) {
    if (!DataSpace)
        DataSpace.emplace(dataSpaceOf(*this, {}));
    return DataSpace->CreateObject(progId, "http://" + headOffice.serverAddress);
}

data::Recordset Run::queryServer(std::string ServerSql) {
    observer_->queryBegins(ServerSql);
    rds::RemoteObject RemoteObj = createObject(headOffice.remoteObjectName);
    rds::Variant unread;
    // By reference like the query, but a copy: what one call returns must not steer the next.
    std::string connectionString = headOffice.connectionString;
    data::Recordset rows = RemoteObj.Getsql(ServerSql, 0, 1, unread, connectionString);
    observer_->queryEnded();
    return rows;
}

bool Run::executeOnServer(db::StatementArray serverStatements) {
    rds::HttpClient::Limits limits;
    limits.quiet = CommandQuietTime;
    rds::RemoteObject CommandObj =
        dataSpaceOf(*this, limits)
            .CreateObject(CommandObjectName, "http://" + headOffice.serverAddress);
    std::string errorText;
    std::string connectionString = headOffice.connectionString;
    return CommandObj.PUTSQL(serverStatements, errorText, connectionString);
}

void Run::yieldOrEnd() const {
    yield();
    if (isEnding())
        throw data::Error(data::number::Canceled, "The receive was ended.");
}

void Run::saveSetting(const char* application, const char* section, const char* key,
                      const std::string& value) const noexcept {
    try {
        settings_.SaveSetting(application, section, key, value);
    } catch (const std::exception& refused) {
        WriteDownloadLog("설정 저장", key, data::number::FileAccess, refused.what());
    }
}

void Run::fail(const std::string& title, const std::string& statement, const data::Error& error) {
    WriteDownloadLog(title, statement, error.Number(), error.Description());
    std::string description = error.Description();
    const std::size_t quoted = refusal_.empty() ? std::string::npos : description.find(refusal_);
    if (quoted != std::string::npos)
        description.replace(quoted, refusal_.size(), withoutQuotations(refusal_));
    failure = Failure{title, statementSubject(statement),
                      std::to_string(error.Number()) + " : " + description};
}

void Run::takeRefusalDown(const std::string& title, const std::string& statement) {
    refusal_ = store_.errorText();
    failure = Failure{title, statementSubject(statement), withoutQuotations(refusal_)};
}

void Run::logBatchFailure(const std::string& title) const noexcept {
    const std::string& text = store_.errorText(); // begins with the error's number
    WriteDownloadLog(title, "", static_cast<long>(leadingNumber(text)), text);
}

void Run::WriteDownloadLog(const std::string& title, const std::string& statement, long errNumber,
                           const std::string& errDescription) const noexcept {
    downloadLog_.write(title, statement, errNumber, errDescription);
}

} // namespace quillet::sync
