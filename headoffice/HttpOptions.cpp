#include "headoffice/HttpOptions.h"

#include "rds/http/AddressList.h"

namespace quillet::headoffice {

namespace {

constexpr std::size_t KiB = 1024;

rds::AddressList listOf(const std::string& networks) {
    return networks.empty() ? rds::AddressList::loopback() : rds::AddressList::parse(networks);
}

} // namespace

rds::HttpServer::Options counterOptions(const Options& options) {
    rds::HttpServer::Options result;
    result.address = options.listen.host;
    result.port = options.listen.port;
    result.admits = listOf(options.allow);
    result.workers = options.workers;
    result.maxConnections = options.connections;
    result.maxQueued = options.queue;
    result.maxBody = options.bodyLimit * KiB;
    result.memory = options.memory * KiB * KiB;
    result.headTime = options.headTime;
    result.bodyTime = options.bodyTime;
    result.replyTime = options.replyTime;
    result.drain = options.drain;
    result.stopOnSignals = true;
    return result;
}

rds::HttpServer::Options adminOptions(const Options& options) {
    rds::HttpServer::Options result;
    result.address = options.admin.host;
    result.port = options.admin.port;
    result.admits = listOf(options.adminAllow);
    result.workers = 2;
    result.maxConnections = 32;
    result.maxQueued = 16;
    result.maxBody = KiB;
    result.drain = std::chrono::seconds(1);
    return result;
}

} // namespace quillet::headoffice
