// What a receive costs against what its databases cannot avoid. scripts/bench prepares everything.

#include "bench/receive/Measurements.h"
#include "files/Paths.h"

#include <QApplication>
#include <QCommandLineParser>

#include <iostream>

int main(int argc, char* argv[]) {
    using namespace quillet;

    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);

    QCommandLineParser line;
    const auto option = [&line](const char* name, const char* value) {
        line.addOption({name, "", value});
        return [&line, name] { return line.value(name).toStdString(); };
    };
    const auto quilletProgram = option("quillet", "program");
    const auto headOfficeProgram = option("head-office", "program");
    const auto earlierHeadOffice = option("earlier-head-office", "program");
    const auto databaseServer = option("database-server", "server");
    const auto databaseUser = option("database-user", "user");
    const auto large = option("large", "database");
    const auto members = option("members", "number");
    const auto small = option("small", "database");
    const auto rounds = option("rounds", "number");
    const auto csv = option("csv", "file");
    line.process(application);

    try {
        const bench::Site site{files::pathOf(quilletProgram()), files::pathOf(headOfficeProgram()),
                               files::pathOf(earlierHeadOffice()), databaseServer(),
                               databaseUser()};
        const bench::Chain largeChain{large(), std::stoi(members())};
        const bench::Chain smallChain{small()};
        const int n = std::stoi(rounds());

        bench::Report report;
        bench::measureStart(report, site, smallChain, 2 * n);
        bench::measureFind(report, largeChain.members);
        bench::measureReceives(report, site, largeChain, smallChain, n);
        bench::measureReply(report, site, largeChain);
        bench::measureServers(report, site, largeChain, 1, n);
        bench::measureServers(report, site, smallChain, 32, n);
        bench::measureCounters(report, site, smallChain, 32, n);
        report.print(std::cout);
        report.writeCsv(files::pathOf(csv()));
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "quillet-bench: " << error.what() << '\n';
        return 1;
    }
}
