#include "bench/receive/Report.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <ostream>

namespace quillet::bench {

namespace {

/// Three significant digits, as many as such a machine repeats.
std::string numberText(double value) {
    std::array<char, 32> text{};
    const int decimals = value >= 100 ? 0 : value >= 10 ? 1 : value >= 1 ? 2 : 3;
    std::snprintf(text.data(), text.size(), "%.*f", decimals, value);
    return text.data();
}

std::string withUnit(const std::string& number, const std::string& unit) {
    return unit.empty() ? number : number + " " + unit;
}

std::string targetText(const Figure& figure) {
    if (!figure.target)
        return "";
    return (figure.goal == Figure::Goal::AtMost ? "<= " : ">= ") +
           withUnit(numberText(*figure.target), figure.unit);
}

double least(const Figure& figure) {
    return *std::min_element(figure.samples.begin(), figure.samples.end());
}

double greatest(const Figure& figure) {
    return *std::max_element(figure.samples.begin(), figure.samples.end());
}

std::string verdict(const Figure& figure) {
    if (!figure.target)
        return "stated";
    return figure.isMet() ? "yes" : "NO";
}

} // namespace

double median(std::vector<double> samples) {
    std::sort(samples.begin(), samples.end());
    const std::size_t middle = samples.size() / 2;
    return samples.size() % 2 != 0 ? samples[middle] : (samples[middle - 1] + samples[middle]) / 2;
}

double Figure::quoted() const {
    return quote == Quote::Median ? median(samples) : greatest(*this);
}

bool Figure::isMet() const {
    if (!target)
        return true;
    return goal == Goal::AtMost ? quoted() <= *target : quoted() >= *target;
}

void Report::add(Figure figure) {
    figures_.push_back(std::move(figure));
}

void Report::print(std::ostream& out) const {
    out << "| what | figure | lowest to highest | target | met |\n|---|---:|---:|---:|---|\n";
    for (const Figure& figure : figures_)
        out << "| " << figure.what << " | " << withUnit(numberText(figure.quoted()), figure.unit)
            << " | " << numberText(least(figure)) << " to " << numberText(greatest(figure)) << " | "
            << targetText(figure) << " | " << verdict(figure) << " |\n";
}

void Report::writeCsv(const std::filesystem::path& file) const {
    std::ofstream out(file, std::ios::trunc);
    out << "what,unit,figure,lowest,highest,samples,target,met\n";
    for (const Figure& figure : figures_) {
        out << '"' << figure.what << "\"," << figure.unit << ',' << figure.quoted() << ','
            << least(figure) << ',' << greatest(figure) << ',' << figure.samples.size() << ',';
        if (figure.target)
            out << *figure.target;
        out << ',' << verdict(figure) << '\n';
    }
}

} // namespace quillet::bench
