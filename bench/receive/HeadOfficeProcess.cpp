#include "bench/receive/HeadOfficeProcess.h"

#include "bench/receive/PeakMemory.h"
#include "files/Paths.h"

#include <QString>

#include <stdexcept>

namespace quillet::bench {

HeadOfficeProcess::HeadOfficeProcess(const std::filesystem::path& program) {
    const std::filesystem::path portFile = folder_ / "port";
    process_.setStandardOutputFile(QProcess::nullDevice());
    process_.setStandardErrorFile(QProcess::nullDevice());
    process_.start(QString::fromStdString(files::textOf(program)),
                   {"--listen", "127.0.0.1:0", "--object", "quorin.data", "--port-file",
                    QString::fromStdString(files::textOf(portFile))});
    std::string port;
    while (!port.ends_with('\n')) {
        if (process_.waitForFinished(20) || process_.state() == QProcess::NotRunning)
            throw std::runtime_error("the head office's server does not start");
        port = tests::readFile(portFile);
    }
    port.pop_back();
    address_ = "127.0.0.1:" + port;
}

HeadOfficeProcess::~HeadOfficeProcess() {
    process_.terminate();
    process_.waitForFinished();
}

std::uint64_t HeadOfficeProcess::peakMemory() const {
    return bench::peakMemory(process_.processId());
}

} // namespace quillet::bench
