// torture_office: a head office that fails at one call (FaultyOffice.h says how), before a real
// one. scripts/torture puts it between a counter and its head office.

#include "tests/torture/FaultyOffice.h"

#include <exception>
#include <fstream>
#include <iostream>
#include <stdexcept>

using quillet::torture::FaultyOffice;

int main(int argc, char** argv) {
    try {
        FaultyOffice::Plan plan;
        std::filesystem::path portFile;
        for (int i = 1; i < argc; i += 2) {
            const std::string name = argv[i];
            if (i + 1 == argc)
                throw std::invalid_argument(name + " needs a value");
            const std::string value = argv[i + 1];
            if (name == "--office")
                plan.office = static_cast<std::uint16_t>(std::stoi(value));
            else if (name == "--port-file")
                portFile = value;
            else if (name == "--fault")
                plan.fault = value;
            else if (name == "--call" || name == "--calls-from")
                plan.call = std::stoi(value), plan.isLasting = name == "--calls-from";
            else if (name == "--seed")
                plan.seed = static_cast<std::uint32_t>(std::stoul(value));
            else if (name == "--file")
                plan.file = value;
            else
                throw std::invalid_argument(
                    name + " is not one of --office PORT, --port-file FILE, --fault NAME, --call "
                           "N, --calls-from N, --seed N, --file FILE");
        }
        FaultyOffice office(plan);
        std::ofstream(portFile) << office.port() << '\n';
        office.run();
    } catch (const std::exception& error) {
        std::cerr << "torture_office: " << error.what() << '\n';
        return 1;
    }
}
