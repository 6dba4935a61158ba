// torture_power_cut BEFORE LIST COPY SEED [whole|end]
//
// Makes of COPY, a copy of the folder BEFORE, what a power cut leaves of it, after a part of LIST
// that the seed chooses; `end` is after all of it, `whole` after all of it with nothing lost.
// Prints which.

#include "tests/torture/PowerCut.h"

#include <array>
#include <fstream>
#include <iostream>
#include <iterator>
#include <random>
#include <span>
#include <string>

int main(int count, char** values) try {
    using quillet::torture::PowerCut;
    const std::span<char*> arguments(values, static_cast<std::size_t>(count));
    if (count < 5 || count > 6)
        throw std::runtime_error("BEFORE LIST COPY SEED [whole|end]");
    std::ifstream stream(arguments[2], std::ios::binary);
    const std::string list{std::istreambuf_iterator<char>(stream), {}};
    const std::string how = count == 6 ? arguments[5] : "";

    std::mt19937_64 random(std::stoull(arguments[4]));
    const std::size_t all = PowerCut::callsIn(list);
    const std::size_t calls = how.empty() ? random() % (all + 1) : all;
    const auto names = static_cast<PowerCut::Names>(random() % 2);
    const auto losses =
        how == "whole" ? PowerCut::Losses::None : static_cast<PowerCut::Losses>(1 + random() % 2);
    PowerCut cut(arguments[1], names, random());
    cut.run(list, calls);
    cut.leave(arguments[3], losses);

    constexpr std::array NamesText{"names in order", "names one by one"};
    constexpr std::array LossesText{"nothing lost", "last calls lost", "any calls lost"};
    std::cout << "after call " << calls << " of " << all << ", "
              << NamesText[static_cast<std::size_t>(names)] << ", "
              << LossesText[static_cast<std::size_t>(losses)] << '\n';
    return 0;
} catch (const std::exception& failure) {
    std::cerr << failure.what() << '\n';
    return 1;
}
