#include "data/Utf16.h"
#include "headoffice/admin/Activity.h"
#include "headoffice/admin/AdminSite.h"
#include "headoffice/admin/HealthKeeper.h"
#include "headoffice/admin/Metrics.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <future>
#include <map>
#include <memory>
#include <regex>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace quillet;
using namespace quillet::headoffice::admin;
using std::chrono::milliseconds;
using std::chrono::minutes;
using std::chrono::seconds;
using testing::HasSubstr;
using testing::Not;

const TimePoint Start = std::chrono::sys_days(std::chrono::year(2024) / 5 / 1) + seconds(30);

rds::CallRecord call(const std::string& peer, milliseconds elapsed = milliseconds(5),
                     const std::string& error = {}) {
    rds::CallRecord record;
    record.peer = peer;
    record.target = "quorin.data.Getsql";
    record.method = "Getsql";
    record.error = error;
    record.rows = 10;
    record.bytes = 1'000;
    record.elapsed = elapsed;
    return record;
}

/// A site that has heard one text wherever a text can come from outside.
std::unique_ptr<AdminSite> siteThatHeard(const std::string& text) {
    auto site = std::make_unique<AdminSite>(
        AdminSite::Options{text, {}, [] { return Start; }},
        [text] {
            return std::vector<DatabaseHealth>{{text, false, text}};
        },
        [] { return Load{}; });
    site->refused(text, text + ":1");
    rds::CallRecord record = call("[" + text + "]:50012", milliseconds(5), text);
    record.target = record.method = record.summary = text;
    site->callFinished(record);
    site->versionReported(text, text, text, text);
    return site;
}

/// The markup alone, without what stands between the tags.
std::vector<std::string> tags(const std::string& page) {
    static const std::regex tag("<[^>]*>");
    return {std::sregex_token_iterator(page.begin(), page.end(), tag), {}};
}

TEST(AdminSite, ShowsHostileTextAsTextAndNothingElse) {
    const auto harmless = siteThatHeard("harmless");
    for (const std::string evil :
         {"<script>alert(1)</script>", "\" onload=\"alert(1)", "' onload='alert(1)",
          "--><!--]]></style></title><b>", "&lt;b&gt;&#60;",
          "a\r\nSet-Cookie: b\n\n# TYPE c counter", "\xff\xc3(\xed\xa0\x80\xf4\x90\x80\x80\xc0\xbc",
          "\xe2\x80\xae\xe2\x81\xa6\xd8\x9c\xc2\x85", "\x01\x1b[31m\x7f",
          "\xf3\xa0\x81\x81\xef\xbf\xbe", "PWD=geheim;"}) {
        SCOPED_TRACE(evil);
        const auto hostile = siteThatHeard(evil);
        const std::string page = hostile->answer("GET", "/", "[::1]:9180").body;
        EXPECT_EQ(tags(page), tags(harmless->answer("GET", "/", "localhost").body));
        EXPECT_EQ(data::toUtf8(data::toUtf16(page)), page) << "is not well-formed";
        for (const char* unseen :
             {"\r", "\x01", "\x1b", "\x7f", "\xc2\x85", "\xd8\x9c", "\xe2\x80\xae", "\xe2\x81\xa6",
              "\xf3\xa0\x81\x81", "\xef\xbf\xbe", "geheim", "<script", "\" onload", "' onload",
              "<b>"})
            EXPECT_THAT(page, Not(HasSubstr(unseen)));

        for (const char* path : {"/metrics", "/health"}) {
            const std::string plain = hostile->answer("GET", path, "127.0.0.1").body;
            const std::string model = harmless->answer("GET", path, "127.0.0.1").body;
            EXPECT_EQ(std::count(plain.begin(), plain.end(), '\n'),
                      std::count(model.begin(), model.end(), '\n'));
            EXPECT_EQ(data::toUtf8(data::toUtf16(plain)), plain) << "is not well-formed";
        }
    }
    // Neither a whole text nor half a character.
    std::string korean;
    for (int i = 0; i < 100'000; ++i)
        korean += "가";
    const Page page = siteThatHeard(korean)->answer("GET", "/?all", "localhost");
    EXPECT_LT(page.body.size(), 40'000U);
    EXPECT_THAT(page.body, HasSubstr("가…"));
    EXPECT_THAT(page.body, Not(HasSubstr("\xef\xbf\xbd")));
}

/// Reads an exposition as strictly as its format is described, into value by series.
std::map<std::string, double> parsed(const std::string& text) {
    static const std::regex sampleLine(R"re(([a-zA-Z_:][a-zA-Z0-9_:]*))re"
                                       R"re((\{(?:[a-zA-Z_]\w*="(?:[^"\\\n]|\\[\\"n])*",?)+\})?)re"
                                       R"re( (\S+))re");
    std::map<std::string, double> result;
    std::map<std::string, std::string> types;
    std::string metric;
    if (text.empty() || text.back() != '\n')
        throw std::runtime_error("the last line does not end");
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        std::smatch match;
        if (std::regex_match(line, match, std::regex("# TYPE (\\S+) (counter|gauge|histogram)"))) {
            metric = match[1];
            if (!types.emplace(metric, match[2]).second)
                throw std::runtime_error("two groups: " + line);
            continue;
        }
        if (std::regex_match(line, std::regex("# HELP \\S+ [^\\\\]+")))
            continue;
        if (!std::regex_match(line, match, sampleLine))
            throw std::runtime_error("no sample: " + line);
        const std::string suffix = match[1].str().substr(std::min(metric.size(), line.size()));
        const bool isHistogram = types[metric] == "histogram";
        if (!match[1].str().starts_with(metric) || metric.empty() ||
            (isHistogram ? suffix != "_bucket" && suffix != "_sum" && suffix != "_count"
                         : !suffix.empty()))
            throw std::runtime_error("not of " + metric + ": " + line);
        if (types[metric] == "counter" && !metric.ends_with("_total"))
            throw std::runtime_error("misnamed: " + metric);
        std::size_t end = 0;
        const double value = std::stod(match[3], &end);
        if (end != match[3].str().size() ||
            !result.emplace(match[1].str() + match[2].str(), value).second)
            throw std::runtime_error("not a number, or said twice: " + line);
    }
    return result;
}

TEST(Metrics, AreWellFormedAndCountWhatHappened) {
    Metrics metrics("1.0 \"x\\y\"");
    const auto empty = parsed(metrics.text({}));
    for (const int elapsed : {5, 6, 250, 120'000, 121'005})
        metrics.callFinished(call("127.0.0.1:1", milliseconds(elapsed)));
    rds::CallRecord stranger = call("127.0.0.1:1", milliseconds(1), "error");
    for (const char* method : {"", "PUTSQL", "getsql\",x=\"", "x1", "x2"}) {
        stranger.method = method;
        metrics.callFinished(stranger);
    }
    metrics.refused("queue_full");
    metrics.refused("never heard of");
    metrics.refused("x");

    Load load;
    load.answering.now = 3;
    load.memory.now = 5'000'000'000;
    const std::string text = metrics.text(load);
    auto series = parsed(text);
    EXPECT_EQ(series.size(), empty.size()) << "what is called by strangers has made a series";
    const auto value = [&](const std::string& name) {
        return series.at("quillet_headoffice_" + name);
    };
    EXPECT_EQ(value("calls_total{method=\"Getsql\",outcome=\"ok\"}"), 5);
    EXPECT_EQ(value("calls_total{method=\"other\",outcome=\"failed\"}"), 4);
    EXPECT_EQ(value("calls_total{method=\"PUTSQL\",outcome=\"failed\"}"), 1);
    EXPECT_EQ(value("rows_sent_total{method=\"Getsql\"}"), 50);
    EXPECT_EQ(value("refused_total{reason=\"queue_full\"}"), 1);
    EXPECT_EQ(value("refused_total{reason=\"other\"}"), 2);
    EXPECT_EQ(value("calls_in_flight"), 3);
    EXPECT_EQ(value("memory_in_use_bytes"), 5e9);
    EXPECT_EQ(value(R"(build_info{version="1.0 \"x\\y\""})"), 1);

    const std::string histogram = "call_duration_seconds";
    EXPECT_EQ(value(histogram + "_bucket{method=\"Getsql\",le=\"0.005\"}"), 1);
    EXPECT_EQ(value(histogram + "_bucket{method=\"Getsql\",le=\"0.01\"}"), 2);
    EXPECT_EQ(value(histogram + "_bucket{method=\"Getsql\",le=\"120\"}"), 4);
    EXPECT_EQ(value(histogram + "_sum{method=\"Getsql\"}"), 241.266);
    for (const std::string method : {"Getsql", "PUTSQL", "other"}) {
        // In the order of the text, as the map's is another.
        const std::regex bucket("_bucket\\{method=\"" + method + "\",le=\"([^\"]*)\"\\} (\\d+)");
        double bound = 0;
        double within = 0;
        std::string last;
        for (std::sregex_iterator i(text.begin(), text.end(), bucket); i != std::sregex_iterator();
             ++i) {
            last = (*i)[1];
            EXPECT_GT(std::stod(last), bound);
            EXPECT_GE(std::stod((*i)[2]), within);
            bound = std::stod(last);
            within = std::stod((*i)[2]);
        }
        EXPECT_EQ(last, "+Inf");
        EXPECT_EQ(within, value(histogram + "_count{method=\"" + method + "\"}"));
    }
}

TEST(Activity, KeepsTheClientsHeardOfLastAndNoMore) {
    TimePoint now = Start;
    Activity activity([&] { return now; });
    for (int i = 0; i < 100'000; ++i) {
        now += milliseconds(1);
        const std::string address = std::to_string(i);
        activity.callFinished(call("[2001:db8::" + address + "]:50012"));
        activity.versionReported("127.0.0.1:1", "S" + address, "01", "1.0");
        activity.refused("not_allowed", "192.0.2.1:" + address);
        activity.refused("not_allowed", "stranger" + address + ":1");
        if (i % 1'000 == 0)
            activity.callFinished(call("127.0.0.1:" + address, milliseconds(1), "PWD=geheim;lost"));
    }
    activity.refused("too_slow", "[2001:db8::99999]:7");

    const Activity::Snapshot seen = activity.snapshot();
    ASSERT_EQ(seen.clients.size(), 2'000U);
    EXPECT_EQ(seen.versions.size(), 5'000U);
    EXPECT_EQ(seen.versions.front().store, "S95000");
    EXPECT_EQ(seen.clients.front().address, "2001:db8::99999");
    EXPECT_EQ(seen.clients.front().lastError, "refused: the client was too slow");
    EXPECT_EQ(seen.clients.back().address, "2001:db8::98001");
    const auto faithful =
        std::find_if(seen.clients.begin(), seen.clients.end(),
                     [](const Activity::Client& client) { return client.address == "127.0.0.1"; });
    ASSERT_NE(faithful, seen.clients.end());
    EXPECT_EQ(faithful->calls, 100U);
    EXPECT_EQ(faithful->lastError, "PWD=***;lost");
    EXPECT_EQ(seen.refusals.at("not_allowed").count, 200'000U);
}

TEST(Activity, KnowsTheLastHourByTheMinute) {
    TimePoint now = Start;
    Activity activity([&] { return now; });
    activity.callFinished(call("a:1", milliseconds(100)));
    activity.callFinished(call("a:1", milliseconds(301), "lost"));
    now += minutes(59);
    activity.refused("gone", "a:1");
    Activity::Snapshot seen = activity.snapshot();
    EXPECT_EQ(seen.minutes.front().start, Start - seconds(30));
    EXPECT_EQ(seen.minutes.front().calls, 2U);
    EXPECT_EQ(seen.minutes.front().failed, 1U);
    EXPECT_EQ(seen.minutes.front().rows, 20U);
    EXPECT_EQ(seen.minutes.front().mean(), milliseconds(200));
    EXPECT_EQ(seen.minutes.front().longest, milliseconds(301));
    EXPECT_EQ(seen.minutes.back().refused, 1U);

    // An hour later its slot is another minute's, whether or not anything has happened meanwhile.
    now += minutes(1);
    seen = activity.snapshot();
    EXPECT_EQ(seen.minutes.back().calls, 0U);
    EXPECT_EQ(seen.minutes[58].refused, 1U);
    activity.callFinished(call("a:1"));
    EXPECT_EQ(activity.snapshot().minutes.back().calls, 1U);

    now -= std::chrono::hours(3);
    for (const Activity::Minute& minute : activity.snapshot().minutes)
        EXPECT_EQ(minute.calls + minute.refused, 0U) << "is in the future";
}

TEST(AdminSite, AsksTheDatabasesRarelyAndSaysWhichDoesNotAnswer) {
    TimePoint now = Start;
    int asked = 0;
    std::vector<DatabaseHealth> state = {{"a:1/x", true, ""}, {"b:2/y", true, ""}};
    AdminSite site(
        {"1.0", {}, [&] { return now; }},
        [&] {
            ++asked;
            if (state.empty())
                throw std::runtime_error("driver text");
            return state;
        },
        [] { return Load{}; });
    const auto health = [&] { return site.answer("GET", "/health", "localhost:9180"); };
    EXPECT_EQ(health().status, 200U);
    EXPECT_EQ(health().body, "ok\nok: a:1/x\nok: b:2/y\n");
    state[1] = {"b:2/y", false, "no connection"};
    now += seconds(9);
    EXPECT_EQ(health().status, 200U);
    EXPECT_THAT(site.answer("GET", "/", "localhost").body, HasSubstr("all databases answer"));
    EXPECT_EQ(asked, 1);
    now += seconds(1);
    EXPECT_EQ(health().status, 503U);
    EXPECT_EQ(health().body, "failed\nok: a:1/x\nfailed: b:2/y: no connection\n");
    EXPECT_THAT(site.answer("GET", "/", "localhost").body,
                HasSubstr("1 of 2 databases does not answer"));
    EXPECT_EQ(asked, 2);
    // A clock that was set back does not keep an answer for longer.
    now -= std::chrono::hours(1);
    state.clear();
    EXPECT_EQ(health().status, 503U);
    EXPECT_THAT(health().body, Not(HasSubstr("driver text")));
    EXPECT_EQ(asked, 3);
}

TEST(HealthKeeper, AsksInOneThreadAtATime) {
    std::atomic<int> asking{0};
    std::atomic<int> asked{0};
    std::atomic<int> offset{0};
    std::promise<void> release;
    const auto released = release.get_future().share();
    HealthKeeper keeper(
        [&] {
            EXPECT_EQ(++asking, 1);
            if (++asked == 2)
                released.wait();
            --asking;
            return std::vector<DatabaseHealth>{{"a", true, ""}};
        },
        [&] { return Start + seconds(offset); });

    std::vector<std::jthread> threads;
    for (int i = 0; i < 8; ++i)
        threads.emplace_back([&] { EXPECT_EQ(keeper.current().databases.size(), 1U); });
    threads.clear();
    EXPECT_EQ(asked, 1);

    // Who comes while a slow database is asked gets the answer of before.
    offset = 20;
    threads.emplace_back([&] { keeper.current(); });
    while (asked < 2)
        std::this_thread::yield();
    EXPECT_EQ(keeper.current().at, Start);
    release.set_value();
    threads.clear();
    EXPECT_EQ(keeper.current().at, Start + seconds(20));
    EXPECT_EQ(asked, 2);
}

TEST(AdminSite, AnswersUnderItsOwnNamesAndOnlyToReaders) {
    int asked = 0;
    AdminSite site(
        {"1.0", {"office.example"}, [] { return Start; }},
        [&] {
            ++asked;
            return std::vector<DatabaseHealth>{};
        },
        [] { return Load{}; });
    for (const char* host : {"127.0.0.1", "10.0.0.255:9180", "[::1]", "[::1]:9180", "[fe80::1]:80",
                             "[::ffff:127.0.0.1]", "localhost", "LocalHost:1", "Office.Example:80"})
        EXPECT_EQ(site.answer("GET", "/metrics", host).status, 200U) << host;
    for (const char* host : {"",
                             ":80",
                             "evil.example",
                             "127.0.0.1.evil.example",
                             "localhost.evil.example",
                             "1.2.3",
                             "1.2.3.4.5",
                             "1.2.3.256",
                             "1.2.3.4.",
                             "127.0.0.1:x",
                             "localhost:80:80",
                             "[evil.example]",
                             "[::1",
                             "[::1]evil.example",
                             "[]",
                             "::1",
                             "evil.example:[::1]",
                             "localhost@evil.example",
                             "office.example.",
                             "xoffice.example",
                             "127.0.0.1 "})
        EXPECT_EQ(site.answer("GET", "/", host).status, 403U) << host;
    EXPECT_EQ(asked, 0);

    const auto status = [&](const char* method, const char* target) {
        return site.answer(method, target, "localhost").status;
    };
    EXPECT_EQ(status("GET", "/?x=y"), 200U);
    for (const char* target :
         {"/x", "/health/", "//", "", "*", "http://localhost/", "/%2e", "/../"})
        EXPECT_EQ(status("GET", target), 404U) << target;
    for (const char* method : {"POST", "PUT", "OPTIONS", "TRACE", "get", ""})
        EXPECT_EQ(status(method, "/health"), 405U) << method;
    EXPECT_THAT(site.answer("POST", "/", "localhost").headers,
                testing::Contains(testing::Pair("Allow", "GET, HEAD")));

    const Page head = site.answer("HEAD", "/", "localhost");
    EXPECT_EQ(head.body, site.answer("GET", "/", "localhost").body);
    for (const auto& [method, host] :
         {std::pair("GET", "localhost"), {"POST", "localhost"}, {"GET", "x"}}) {
        const auto headers = site.answer(method, "/", host).headers;
        for (const char* name : {"Content-Security-Policy", "X-Content-Type-Options",
                                 "X-Frame-Options", "Referrer-Policy"})
            EXPECT_THAT(headers, testing::Contains(testing::Key(name)));
    }
}

} // namespace
