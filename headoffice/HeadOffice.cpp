#include "headoffice/HeadOffice.h"

#include "data/Error.h"
#include "headoffice/HttpOptions.h"
#include "headoffice/admin/RefusalReason.h"
#include "headoffice/database/OpenDatabase.h"

#include <filesystem>
#include <fstream>
#include <thread>
#include <utility>

namespace quillet::headoffice {

namespace {

constexpr const char* CommandProgId = "quorin.demon";

DatabasePool::Limits poolLimits(const Options& options) {
    DatabasePool::Limits result;
    result.call = options.queryTime;
    result.idle = options.workers;
    return result;
}

/// Under its name the file is never seen empty or half written.
void writePortFile(const std::filesystem::path& file, std::uint16_t port) {
    if (file.empty())
        return;
    std::filesystem::path unfinished = file;
    unfinished += ".new";
    std::error_code error;
    if ((std::ofstream(unfinished, std::ios::trunc) << port << '\n').flush())
        std::filesystem::rename(unfinished, file, error);
    else
        error = std::make_error_code(std::errc::io_error);
    if (error)
        throw data::Error(data::number::InvalidArgument,
                          "Cannot write the port file " + file.string());
}

const char* labelOf(rds::HttpServer::Refusal refusal) {
    using Refusal = rds::HttpServer::Refusal;
    switch (refusal) {
    case Refusal::NotAllowed:
        return "not_allowed";
    case Refusal::BadRequest:
        return "bad_request";
    case Refusal::TooLarge:
        return "too_large";
    case Refusal::TooSlow:
        return "too_slow";
    case Refusal::QueueFull:
        return "queue_full";
    case Refusal::NoMemory:
        return "no_memory";
    case Refusal::NoRoom:
        return "no_room";
    case Refusal::Gone:
        return "gone";
    }
    return "other";
}

} // namespace

HeadOffice::HeadOffice(const Options& options, std::ostream& log)
    : options_(options), log_(log), probe_(options), access_(options.databases, options.driver),
      pool_([driver = options.driver](
                const DatabaseLogin& login) { return openDatabase(login, driver); },
            poolLimits(options)),
      query_(access_, pool_), command_(access_, pool_, WriteGuard(options.writable),
                                       [this](const UpdateStatement& update,
                                              const std::string& peer) { written(update, peer); }),
      site_(
          {QUILLET_VERSION, {}}, [this] { return health(); }, [this] { return load(); }),
      calls_({options.returnArguments},
             [this](const rds::CallRecord& record) { finished(record); }),
      http_(
          [&] {
              auto server = counterOptions(options);
              server.onRefusal = [this](rds::HttpServer::Refusal refusal, const std::string& peer) {
                  refused(refusal, peer);
              };
              return server;
          }(),
          [this](const rds::HttpRequest& request, rds::HttpReply& reply) {
              calls_.handle(request, reply);
          }) {
    calls_.add(options.queryObject, query_);
    calls_.add(CommandProgId, command_);
    if (!options.admin.host.empty())
        admin_ = std::make_unique<rds::HttpServer>(
            adminOptions(options), [this](const rds::HttpRequest& request, rds::HttpReply& reply) {
                answerAdmin(request, reply);
            });
    writePortFile(options.portFile, port());
    writePortFile(options.adminPortFile, adminPort());
}

void HeadOffice::run() {
    std::jthread admin;
    if (admin_)
        admin = std::jthread([this] { admin_->run(); });
    http_.run();
    if (admin_)
        admin_->stop();
}

void HeadOffice::finished(const rds::CallRecord& record) {
    log_.write(record);
    site_.callFinished(record);
}

void HeadOffice::refused(rds::HttpServer::Refusal refusal, const std::string& peer) {
    const std::string_view label = labelOf(refusal);
    log_.refused(admin::refusalReason(label).words, peer);
    site_.refused(label, peer);
}

void HeadOffice::written(const UpdateStatement& update, const std::string& peer) {
    if (update.isReport)
        site_.versionReported(peer, update.keys.back().second, update.keys.front().second,
                              update.values.front().second);
}

std::vector<admin::DatabaseHealth> HeadOffice::health() const {
    std::vector<admin::DatabaseHealth> result;
    for (const DatabaseState& state : probe_.look())
        result.push_back({state.name, state.answers, state.reason});
    return result;
}

admin::Load HeadOffice::load() {
    const rds::HttpServer::Load now = http_.load();
    const DatabasePool::Counts databases = pool_.counts();
    admin::Load load;
    load.answering = {now.answering, options_.workers};
    load.waiting = {now.queued, options_.queue};
    load.connections = {now.connections, options_.connections};
    load.memory = {now.memory, counterOptions(options_).memory};
    load.databaseConnections = {databases.inUse, options_.workers};
    load.databaseConnectionsOpen = databases.open;
    return load;
}

void HeadOffice::answerAdmin(const rds::HttpRequest& request, rds::HttpReply& reply) {
    const admin::Page page = site_.answer(request.method, request.target, request.header("Host"));
    reply.page(page.status, page.contentType, page.body, page.headers);
}

} // namespace quillet::headoffice
