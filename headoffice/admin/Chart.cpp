#include "headoffice/admin/Chart.h"

#include "headoffice/admin/LocalTime.h"

#include <algorithm>

namespace quillet::headoffice::admin {

namespace {

using Minutes = std::array<Activity::Minute, 60>;
using std::chrono::milliseconds;

// In the units of the view box; margins hold the larger letters of narrow windows.
constexpr std::uint64_t Width = 654;
constexpr std::uint64_t Height = 240;
constexpr std::uint64_t Left = 80;
constexpr std::uint64_t Top = 26;
constexpr std::uint64_t Bottom = 206;
constexpr std::uint64_t Step = 9;
constexpr std::uint64_t Bar = 7;
constexpr std::uint64_t Right = Left + 60 * Step;

/// The smallest of 2, 4, 10, 20, 40, 100 ... that is not below; halves are whole numbers.
std::uint64_t roundMaximum(std::uint64_t value) {
    std::uint64_t result = 2;
    for (std::uint64_t factor = 1; result < value; factor *= 10) {
        for (const std::uint64_t step : {2U, 4U, 6U, 10U}) {
            result = step * factor;
            if (result >= value)
                break;
        }
    }
    return result;
}

class Drawing {
public:
    /// @param id of the elements that name it. @param maximum of the vertical axis.
    Drawing(const std::string& id, const std::string& title, const std::string& description,
            std::uint64_t maximum)
        : maximum_(maximum) {
        svg_ = "<svg class=\"chart\" role=\"img\" viewBox=\"0 0 " + std::to_string(Width) + ' ' +
               std::to_string(Height) + "\" aria-labelledby=\"" + id + "-title " + id +
               "-desc\">\n<title id=\"" + id + "-title\">" + title + "</title>\n<desc id=\"" + id +
               "-desc\">" + description + "</desc>\n";
    }

    std::uint64_t maximum() const { return maximum_; }

    /// From the baseline up.
    std::uint64_t height(std::uint64_t value) const {
        // What is not nothing shall be seen.
        const std::uint64_t scaled = std::min(value, maximum_) * (Bottom - Top) / maximum_;
        return value > 0 ? std::max<std::uint64_t>(scaled, 2) : 0;
    }

    void grid(const std::string& half, const std::string& full, const Minutes& minutes) {
        line(Top);
        line((Top + Bottom) / 2);
        text(Left - 8, Top + 5, "end", full);
        text(Left - 8, (Top + Bottom) / 2 + 5, "end", half);
        text(Left - 8, Bottom + 5, "end", "0");
        for (std::size_t i = 0; i < minutes.size(); ++i) {
            const std::string time = localMinute(minutes[i].start);
            if (time.ends_with(":00") || time.ends_with(":15") || time.ends_with(":30") ||
                time.ends_with(":45"))
                text(center(i), Bottom + 24, "middle", time);
        }
    }

    /// What bars of failed calls are filled with.
    void hatching() {
        svg_ += "<defs><pattern id=\"hatching\" width=\"5\" height=\"5\" patternUnits=\""
                "userSpaceOnUse\"><path class=\"hatching\" d=\"M-1 1l2 -2M0 5l5 -5M4 6l2 -2\"/>"
                "</pattern></defs>";
    }

    void bar(std::size_t minute, std::uint64_t from, std::uint64_t to, const char* look) {
        if (to <= from)
            return;
        svg_ += "<rect class=\"" + std::string(look) + "\" x=\"" +
                std::to_string(Left + minute * Step + 1) + "\" y=\"" + std::to_string(Bottom - to) +
                "\" width=\"" + std::to_string(Bar) + "\" height=\"" + std::to_string(to - from) +
                "\"/>";
    }

    void cross(std::size_t minute, std::uint64_t height) {
        const std::uint64_t y = std::max<std::uint64_t>(Bottom - height, Top) - 9;
        path("cross", moveTo(center(minute) - 3, y - 3) + "l6 6m0 -6l-6 6");
    }

    void path(const char* look, const std::string& commands) {
        svg_ += "<path class=\"" + std::string(look) + "\" d=\"" + commands + "\"/>";
    }

    void dot(std::size_t minute, std::uint64_t height) {
        svg_ += "<circle class=\"mean\" cx=\"" + std::to_string(center(minute)) + "\" cy=\"" +
                std::to_string(Bottom - height) + "\" r=\"2.5\"/>";
    }

    /// Over the whole height of a minute, so that the pointer finds it.
    void hint(std::size_t minute, const std::string& words) {
        svg_ += "<rect class=\"hint\" x=\"" + std::to_string(Left + minute * Step) + "\" y=\"" +
                std::to_string(Top) + "\" width=\"" + std::to_string(Step) + "\" height=\"" +
                std::to_string(Bottom - Top) + "\"><title>" + words + "</title></rect>\n";
    }

    static std::uint64_t center(std::size_t minute) { return Left + minute * Step + Step / 2; }

    static std::string moveTo(std::uint64_t x, std::uint64_t y) {
        std::string command = "M";
        command += point(x, y);
        return command;
    }

    static std::string point(std::uint64_t x, std::uint64_t y) {
        return std::to_string(x) + ' ' + std::to_string(y);
    }

    std::string finished() {
        path("base", moveTo(Left, Bottom) + 'H' + std::to_string(Right));
        return svg_ + "</svg>\n";
    }

private:
    void line(std::uint64_t y) { path("grid", moveTo(Left, y) + 'H' + std::to_string(Right)); }

    void text(std::uint64_t x, std::uint64_t y, const char* anchor, const std::string& words) {
        svg_ += "<text x=\"" + std::to_string(x) + "\" y=\"" + std::to_string(y) +
                "\" text-anchor=\"" + anchor + "\">" + words + "</text>";
    }

    std::uint64_t maximum_;
    std::string svg_;
};

std::uint64_t count(milliseconds duration) {
    return static_cast<std::uint64_t>(std::max<std::int64_t>(duration.count(), 0));
}

/// In milliseconds, of whole minutes or hours when it is longer than one.
std::uint64_t roundMaximum(milliseconds longest) {
    const std::uint64_t value = count(longest);
    const std::uint64_t unit = value <= 60'000 ? 1 : value <= 3'600'000 ? 60'000 : 3'600'000;
    return roundMaximum((value + unit - 1) / unit) * unit;
}

} // namespace

std::string grouped(std::uint64_t number) {
    std::string result = std::to_string(number);
    for (std::size_t place = result.size(); place > 3;)
        result.insert(place -= 3, 1, ',');
    return result;
}

std::string durationText(milliseconds duration) {
    const std::uint64_t whole = count(duration);
    if (whole < 1'000)
        return std::to_string(whole) + " ms";
    const auto tenths = [](std::uint64_t value, const char* unit) {
        return grouped(value / 10) + (value % 10 == 0 ? "" : '.' + std::to_string(value % 10)) +
               unit;
    };
    if (whole < 120'000)
        return tenths(whole / 100, " s");
    return whole < 7'200'000 ? tenths(whole / 6'000, " min") : tenths(whole / 360'000, " h");
}

std::string callsChart(const Minutes& minutes) {
    std::uint64_t most = 0;
    std::uint64_t calls = 0;
    std::uint64_t failed = 0;
    for (const Activity::Minute& minute : minutes) {
        most = std::max(most, minute.calls);
        calls += minute.calls;
        failed += minute.failed;
    }
    Drawing drawing("calls", "Calls per minute in the last hour",
                    grouped(calls) + " calls, " + grouped(failed) + " of them failed; at most " +
                        grouped(most) + " in a minute.",
                    roundMaximum(most));
    drawing.hatching();
    drawing.grid(grouped(drawing.maximum() / 2), grouped(drawing.maximum()), minutes);
    for (std::size_t i = 0; i < minutes.size(); ++i) {
        const Activity::Minute& minute = minutes[i];
        const std::uint64_t all = drawing.height(minute.calls);
        const std::uint64_t below = std::min(drawing.height(minute.failed), all);
        drawing.bar(i, below, all, "answered");
        drawing.bar(i, 0, below, "failed");
        if (minute.failed > 0)
            drawing.cross(i, all);
        drawing.hint(i, localMinute(minute.start) + ": " + grouped(minute.calls) + " calls, " +
                            grouped(minute.failed) + " failed, " + grouped(minute.refused) +
                            " refused");
    }
    return drawing.finished();
}

std::string durationChart(const Minutes& minutes) {
    milliseconds most{0};
    for (const Activity::Minute& minute : minutes)
        most = std::max(most, minute.longest);
    Drawing drawing("duration", "Duration of calls in the last hour",
                    "The longest call took " + durationText(most) + '.', roundMaximum(most));
    const auto scale = [&](std::uint64_t share) {
        return durationText(milliseconds(static_cast<std::int64_t>(share)));
    };
    drawing.grid(scale(drawing.maximum() / 2), scale(drawing.maximum()), minutes);
    std::string line;
    for (std::size_t i = 0; i < minutes.size(); ++i)
        drawing.bar(i, 0, drawing.height(count(minutes[i].longest)), "longest");
    for (std::size_t i = 0; i < minutes.size(); ++i) {
        if (minutes[i].calls == 0)
            continue;
        const std::uint64_t mean = drawing.height(count(minutes[i].mean()));
        const bool goesOn = i > 0 && minutes[i - 1].calls > 0;
        line += (goesOn ? 'L' : 'M') + Drawing::point(Drawing::center(i), Bottom - mean);
        drawing.dot(i, mean);
    }
    if (!line.empty())
        drawing.path("mean", line);
    for (std::size_t i = 0; i < minutes.size(); ++i)
        drawing.hint(i, localMinute(minutes[i].start) + ": mean " +
                            durationText(minutes[i].mean()) + ", longest " +
                            durationText(minutes[i].longest));
    return drawing.finished();
}

} // namespace quillet::headoffice::admin
