#pragma once

#include <filesystem>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace quillet::bench {

/// A line of the report: samples of one quantity, and what they should come to.
struct Figure {
    enum class Goal { AtMost, AtLeast };
    enum class Quote { Median, Maximum };

    std::string what;
    std::string unit; ///< "" for a ratio
    std::vector<double> samples;
    std::optional<double> target{};
    Goal goal = Goal::AtMost;
    Quote quote = Quote::Median;

    double quoted() const;
    bool isMet() const; ///< also without a target
};

double median(std::vector<double> samples);

/// The figures as a table for people, and the same as CSV.
class Report {
public:
    void add(Figure figure);

    void print(std::ostream& out) const;
    void writeCsv(const std::filesystem::path& file) const;

private:
    std::vector<Figure> figures_;
};

} // namespace quillet::bench
