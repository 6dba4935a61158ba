#include "headoffice/HeadOffice.h"

#include "db/Error.h"

#include <filesystem>
#include <fstream>
#include <string>

namespace quillet::headoffice {

namespace {

constexpr const char* CommandProgId = "quorin.demon";

rds::HttpServer::Options serverOptions(const Options& options) {
    rds::HttpServer::Options result;
    result.address = options.address;
    result.port = options.port;
    result.stopOnSignals = true;
    return result;
}

/// Under its name the file is never seen empty or half written.
void writePortFile(const std::filesystem::path& file, std::uint16_t port) {
    std::filesystem::path unfinished = file;
    unfinished += ".new";
    std::error_code error;
    if ((std::ofstream(unfinished, std::ios::trunc) << port << '\n').flush())
        std::filesystem::rename(unfinished, file, error);
    else
        error = std::make_error_code(std::errc::io_error);
    if (error)
        throw db::Error(db::number::InvalidArgument, "Cannot write the port file " + file.string());
}

} // namespace

HeadOffice::HeadOffice(const Options& options, std::ostream& log)
    : log_(log), calls_({options.returnArguments},
                        [this](const rds::CallRecord& record) { log_.write(record); }),
      http_(serverOptions(options), [this](const rds::HttpRequest& request, rds::HttpReply& reply) {
          calls_.handle(request, reply);
      }) {
    calls_.add(options.queryObject, query_);
    calls_.add(CommandProgId, command_);
    if (!options.portFile.empty())
        writePortFile(options.portFile, port());
}

} // namespace quillet::headoffice
