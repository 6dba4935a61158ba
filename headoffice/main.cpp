#include "db/Error.h"
#include "headoffice/HeadOffice.h"
#include "headoffice/Options.h"

#include <clocale>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

using namespace quillet;

int main(int argc, char** argv) {
    // The ODBC driver manager converts text by the locale for drivers without Unicode calls.
    std::setlocale(LC_CTYPE, "");
    headoffice::Options options;
    try {
        options = headoffice::parseOptions(std::vector<std::string>(argv + 1, argv + argc));
    } catch (const db::Error& error) {
        std::cerr << "quillet-headoffice: " << error.what() << '\n';
        return 2;
    }
    if (options.help) {
        std::cout << headoffice::helpText();
        return 0;
    }
    if (options.version) {
        std::cout << headoffice::versionText() << '\n';
        return 0;
    }
    try {
        headoffice::HeadOffice office(options, std::cout);
        std::cout << "Listening on " << options.address << ", port " << office.port() << std::endl;
        office.run();
        std::cout << "Stopped" << std::endl;
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "quillet-headoffice: " << error.what() << '\n';
        return 1;
    }
}
