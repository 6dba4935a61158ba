#include "headoffice/admin/AdminPage.h"

#include "headoffice/admin/AdminStyle.h"
#include "headoffice/admin/Chart.h"
#include "headoffice/admin/HtmlTable.h"
#include "headoffice/admin/RefusalReason.h"
#include "headoffice/admin/SafeText.h"

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

namespace quillet::headoffice::admin {

namespace {

constexpr std::size_t MostOfText = 240; // bytes
constexpr std::size_t MostClients = 100;
constexpr std::size_t MostVersions = 200;
constexpr std::size_t MostKinds = 5;

/// A text from outside, whose direction shall not touch what stands beside it.
std::string outside(std::string_view text) {
    return "<bdi>" + html(kept(text, MostOfText)) + "</bdi>";
}

std::string soft(const std::string& words) {
    return "<span class=\"soft\">" + words + "</span>";
}

std::string ago(std::chrono::seconds age) {
    const std::uint64_t seconds =
        static_cast<std::uint64_t>(std::max<std::int64_t>(age.count(), 0));
    if (seconds < 120)
        return std::to_string(seconds) + " s ago";
    if (seconds < 7'200)
        return std::to_string(seconds / 60) + " min ago";
    if (seconds < 172'800)
        return std::to_string(seconds / 3'600) + " h ago";
    return grouped(seconds / 86'400) + " days ago";
}

std::string timeOf(TimePoint time) {
    return "<time datetime=\"" + isoText(time) + "\">" + localText(time) + "</time>";
}

std::string timeAndAge(TimePoint time, TimePoint now) {
    return timeOf(time) + ' ' +
           soft(ago(std::chrono::duration_cast<std::chrono::seconds>(now - time)));
}

std::string bytesText(std::uint64_t bytes) {
    if (bytes < 1'000)
        return std::to_string(bytes) + " B";
    std::uint64_t unit = 1'000;
    const char* const* name = nullptr;
    static constexpr const char* Names[] = {" kB", " MB", " GB", " TB"};
    for (name = Names; bytes / unit >= 1'000 && name != std::end(Names) - 1; ++name)
        unit *= 1'000;
    const std::uint64_t whole = bytes / unit;
    const std::string tenth = whole < 100 ? '.' + std::to_string(bytes % unit * 10 / unit) : "";
    return grouped(whole) + tenth + *name;
}

std::string counted(std::uint64_t number, const std::string& one, const std::string& many) {
    return grouped(number) + ' ' + (number == 1 ? one : many);
}

std::string section(const std::string& id, const std::string& title, const std::string& content) {
    return "<section aria-labelledby=\"" + id + "\">\n<h2 id=\"" + id + "\">" + title + "</h2>\n" +
           content + "</section>\n";
}

/// What is not on the page, and where it is.
std::string rest(std::size_t all, std::size_t listed, const char* what) {
    if (all <= listed)
        return {};
    return "<p class=\"soft\">" + grouped(all - listed) + " more " + what +
           " are kept. <a href=\"/?all\">Show all of them</a></p>\n";
}

/// In one sentence, without markup.
std::string stateOf(const HealthKeeper::Health& health) {
    const auto failed = static_cast<std::uint64_t>(
        std::count_if(health.databases.begin(), health.databases.end(),
                      [](const DatabaseHealth& database) { return !database.ok; }));
    if (health.databases.empty())
        return "no database is listed";
    if (failed == 0)
        return "all databases answer";
    return grouped(failed) + " of " + counted(health.databases.size(), "database", "databases") +
           (failed == 1 ? " does not answer" : " do not answer");
}

std::string databases(const AdminPageData& data) {
    const HealthKeeper::Health& health = data.health;
    if (health.databases.empty())
        return section("databases", "Databases",
                       "<p>No database is listed, so none is asked.</p>\n");
    HtmlTable table({{"Database"}, {"State", "name"}},
                    (health.allOk() ? "<span class=\"good\">✔ " : "<span class=\"bad\">✖ ") +
                        stateOf(health) + "</span>, asked " +
                        timeAndAge(health.at, data.activity.at));
    for (const DatabaseHealth& database : health.databases) {
        table.row({outside(database.name), database.ok
                                               ? "<span class=\"good\">✔ answers</span>"
                                               : "<span class=\"bad\">✖ does not answer</span> " +
                                                     outside(database.reason)});
    }
    return section("databases", "Databases", table.finished());
}

std::string entry(const std::string& term, const std::string& value) {
    return "<div><dt>" + term + "</dt><dd>" + value + "</dd></div>\n";
}

std::string gauge(const std::string& term, const Load::Gauge& gauge,
                  std::string (*text)(std::uint64_t)) {
    std::string value = text(gauge.now);
    if (gauge.limit > 0) {
        value += ' ' + soft("of " + text(gauge.limit)) + "<meter aria-label=\"" + term +
                 "\" max=\"" + std::to_string(gauge.limit) + "\" high=\"" +
                 std::to_string(gauge.limit / 10 * 8 + gauge.limit % 10 * 8 / 10) + "\" value=\"" +
                 std::to_string(std::min(gauge.now, gauge.limit)) + "\"></meter>";
    }
    return entry(term, value);
}

std::string loadNow(const Load& load) {
    return section("load", "Load now",
                   "<dl>\n" + gauge("Calls being answered", load.answering, grouped) +
                       gauge("Calls waiting", load.waiting, grouped) +
                       gauge("Client connections", load.connections, grouped) +
                       gauge("Memory in use", load.memory, bytesText) +
                       gauge("Database connections in use", load.databaseConnections, grouped) +
                       entry("Database connections open", grouped(load.databaseConnectionsOpen)) +
                       "</dl>\n");
}

std::string swatch(const char* shape, const char* words) {
    return "<span><svg viewBox=\"0 0 16 14\" aria-hidden=\"true\">" + std::string(shape) +
           "</svg>" + words + "</span>";
}

std::string minuteTable(const std::array<Activity::Minute, 60>& minutes) {
    HtmlTable table({{"Minute"},
                     {"Calls", "number"},
                     {"Failed", "number"},
                     {"Refused", "number"},
                     {"Rows", "number"},
                     {"Sent", "number"},
                     {"Mean", "number"},
                     {"Longest", "number"}});
    std::for_each(minutes.rbegin(), minutes.rend(), [&](const Activity::Minute& minute) {
        if (minute.calls > 0 || minute.refused > 0)
            table.row({localMinute(minute.start), grouped(minute.calls), grouped(minute.failed),
                       grouped(minute.refused), grouped(minute.rows), bytesText(minute.bytes),
                       durationText(minute.mean()), durationText(minute.longest)});
    });
    return "<details><summary>The numbers of every minute</summary>\n" + table.finished() +
           "</details>\n";
}

std::string lastHour(const AdminPageData& data) {
    const auto& minutes = data.activity.minutes;
    Activity::Minute sum;
    for (const Activity::Minute& minute : minutes) {
        sum.calls += minute.calls;
        sum.failed += minute.failed;
        sum.refused += minute.refused;
        sum.rows += minute.rows;
        sum.bytes += minute.bytes;
        sum.total += minute.total;
        sum.longest = std::max(sum.longest, minute.longest);
    }
    if (sum.calls == 0 && sum.refused == 0)
        return section("hour", "Last hour", "<p>Nobody has called in the last hour.</p>\n");
    std::string content =
        "<dl class=\"totals\">\n" + entry("Calls", grouped(sum.calls)) +
        entry("Failed", grouped(sum.failed)) + entry("Refused", grouped(sum.refused)) +
        entry("Rows sent", grouped(sum.rows)) + entry("Sent", bytesText(sum.bytes));
    if (sum.calls > 0)
        content += entry("Mean duration", durationText(sum.mean())) +
                   entry("Longest", durationText(sum.longest));
    content += "</dl>\n";
    if (sum.calls > 0) {
        content +=
            "<div class=\"charts\">\n<figure><h3>Calls per minute</h3>\n" + callsChart(minutes) +
            "<figcaption>" +
            swatch("<rect class=\"answered\" x=\"2\" width=\"12\" height=\"14\"/>", "answered") +
            swatch("<rect class=\"failed\" x=\"2\" y=\"1\" width=\"12\" height=\"12\"/>",
                   "failed") +
            swatch("<path class=\"cross\" d=\"M4 3l8 8m0 -8l-8 8\"/>",
                   "a minute with failed calls") +
            "</figcaption></figure>\n<figure><h3>Duration</h3>\n" + durationChart(minutes) +
            "<figcaption>" +
            swatch("<rect class=\"longest\" x=\"2\" width=\"12\" height=\"14\"/>",
                   "longest call of the minute") +
            swatch("<path class=\"mean\" d=\"M0 7H16\"/><circle class=\"mean\" cx=\"8\" cy=\"7\" "
                   "r=\"3\"/>",
                   "mean") +
            "</figcaption></figure>\n</div>\n";
    }
    return section("hour", "Last hour", content + minuteTable(minutes));
}

std::string clients(const AdminPageData& data) {
    const auto& all = data.activity.clients;
    if (all.empty())
        return section("clients", "Clients",
                       "<p>No client has called since the server was started.</p>\n");
    const std::size_t listed = data.everything ? all.size() : std::min(all.size(), MostClients);
    HtmlTable table({{"Address"},
                     {"Last call", "when"},
                     {"What", "name"},
                     {"Calls", "number"},
                     {"Failed", "number"},
                     {"Last error"}},
                    counted(all.size(), "client", "clients") +
                        ", the one heard of last comes first");
    for (std::size_t i = 0; i < listed; ++i) {
        const Activity::Client& client = all[i];
        std::string error;
        if (!client.lastError.empty())
            error = (client.lastFailed ? "<span class=\"bad\">✖ failing</span> " : "") +
                    timeAndAge(client.lastErrorAt, data.activity.at) + ' ' +
                    outside(client.lastError);
        table.row({outside(client.address), timeAndAge(client.lastCall, data.activity.at),
                   outside(client.lastTarget), grouped(client.calls), grouped(client.failed),
                   error});
    }
    return section("clients", "Clients", table.finished() + rest(all.size(), listed, "clients"));
}

/// "1.4.2 on 118 counters, 1.4.1 on 3 counters".
std::string versionsInUse(const std::vector<Activity::Version>& all) {
    std::map<std::string, std::uint64_t> counters;
    for (const Activity::Version& version : all)
        ++counters[version.version];
    std::vector<std::pair<std::string, std::uint64_t>> kinds(counters.begin(), counters.end());
    std::stable_sort(kinds.begin(), kinds.end(),
                     [](const auto& a, const auto& b) { return a.second > b.second; });
    std::string result;
    for (std::size_t i = 0; i < std::min(kinds.size(), MostKinds); ++i)
        result += (i > 0 ? ", " : "") + outside(kinds[i].first) + " on " +
                  counted(kinds[i].second, "counter", "counters");
    if (kinds.size() > MostKinds)
        result += ", and " + counted(kinds.size() - MostKinds, "other version", "other versions");
    return result;
}

std::string versions(const AdminPageData& data) {
    const auto& all = data.activity.versions;
    if (all.empty())
        return section(
            "versions", "Versions",
            "<p>No counter has reported its version since the server was started.</p>\n");
    const std::size_t listed = data.everything ? all.size() : std::min(all.size(), MostVersions);
    HtmlTable table({{"Store"}, {"Counter"}, {"Version"}, {"Reported", "when"}, {"From"}},
                    versionsInUse(all));
    for (std::size_t i = 0; i < listed; ++i) {
        const Activity::Version& version = all[i];
        table.row({outside(version.store), outside(version.counter), outside(version.version),
                   timeAndAge(version.at, data.activity.at), outside(version.address)});
    }
    return section("versions", "Versions", table.finished() + rest(all.size(), listed, "counters"));
}

std::string refusals(const AdminPageData& data) {
    const auto& all = data.activity.refusals;
    if (all.empty())
        return section("refusals", "Refused",
                       "<p>Nothing has been refused since the server was started.</p>\n");
    HtmlTable table({{"Reason"}, {"Times", "number"}, {"Last", "when"}, {"From"}});
    for (const auto& [label, reason] : all)
        table.row({std::string(refusalReason(label).words), grouped(reason.count),
                   timeAndAge(reason.last, data.activity.at), outside(reason.lastAddress)});
    return section("refusals", "Refused", table.finished());
}

std::string head(const AdminPageData& data) {
    std::string result =
        "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n";
    if (!data.everything)
        result += "<meta http-equiv=\"refresh\" content=\"15\">\n";
    result += "<title>Quillet head office: " + stateOf(data.health) + "</title>\n<style>";
    result += AdminStyle;
    return result + "</style>\n</head>\n<body>\n";
}

} // namespace

std::string adminPage(const AdminPageData& data) {
    const std::string renewal =
        data.everything
            ? "this page stands still. <a href=\"/\">The page that renews itself</a>"
            : "this page renews itself every 15 seconds. <a href=\"/?all\">Everything, standing "
              "still</a>";
    return head(data) + "<header>\n<h1>Quillet head office</h1>\n<p>Version " +
           outside(data.version) + ", running since " + timeOf(data.activity.since) + ". As of " +
           timeOf(data.activity.at) + "; " + renewal + "</p>\n</header>\n<main>\n" +
           databases(data) + loadNow(data.load) + lastHour(data) + clients(data) + versions(data) +
           refusals(data) + "</main>\n</body>\n</html>\n";
}

} // namespace quillet::headoffice::admin
