#include "data/Error.h"
#include "headoffice/HeadOffice.h"
#include "headoffice/Options.h"
#include "headoffice/database/DatabaseProbe.h"

#include <clocale>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

using namespace quillet;

namespace {

int check(const headoffice::Options& options) {
    bool allAnswer = true;
    for (const headoffice::DatabaseState& state : headoffice::DatabaseProbe(options).look()) {
        std::cout << state.name << ": " << (state.answers ? "ok" : state.reason) << '\n';
        allAnswer = allAnswer && state.answers;
    }
    return allAnswer ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    // The ODBC driver manager converts text by the locale for drivers without Unicode calls.
    std::setlocale(LC_CTYPE, "");
    headoffice::Options options;
    try {
        options = headoffice::parseOptions(std::vector<std::string>(argv + 1, argv + argc));
    } catch (const data::Error& error) {
        std::cerr << "quillet-headoffice: " << error.what() << '\n';
        return 2;
    }
    if (!options.information.empty()) {
        std::cout << options.information;
        return 0;
    }
    try {
        if (options.check)
            return check(options);
        headoffice::HeadOffice office(options, std::cout);
        office.run();
        std::cout << "Stopped" << std::endl;
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "quillet-headoffice: " << error.what() << '\n';
        return 1;
    }
}
