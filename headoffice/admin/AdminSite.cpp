#include "headoffice/admin/AdminSite.h"

#include "data/AsciiText.h"
#include "headoffice/admin/AdminPage.h"
#include "headoffice/admin/SafeText.h"

#include <algorithm>

namespace quillet::headoffice::admin {

namespace {

constexpr const char* PlainText = "text/plain; charset=utf-8";

bool consistsOf(std::string_view text, std::string_view characters) {
    return !text.empty() && text.find_first_not_of(characters) == std::string_view::npos;
}

/// Four numbers up to 255.
bool isIpv4(std::string_view text) {
    for (int place = 0; place < 4; ++place) {
        const std::size_t end = std::min(text.find('.'), text.size());
        const std::string_view number = text.substr(0, end);
        if (!consistsOf(number, "0123456789") || number.size() > 3 ||
            (number.size() == 3 && number > "255") || (place < 3) != (end < text.size()))
            return false;
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return true;
}

/// No name has a colon, so this need not be exact.
bool isIpv6(std::string_view text) {
    return consistsOf(text, "0123456789abcdefABCDEF:.") && text.find(':') != std::string_view::npos;
}

Page refusal(unsigned status, std::string words) {
    return {status, PlainText, std::move(words) + '\n', {}};
}

} // namespace

AdminSite::AdminSite(Options options, HealthKeeper::Ask askHealth, AskLoad askLoad)
    : options_(std::move(options)), askLoad_(std::move(askLoad)),
      health_(std::move(askHealth), options_.clock), activity_(options_.clock),
      metrics_(options_.version) {}

void AdminSite::callFinished(const rds::CallRecord& record) {
    activity_.callFinished(record);
    metrics_.callFinished(record);
}

void AdminSite::refused(std::string_view reason, std::string_view peer) {
    activity_.refused(reason, peer);
    metrics_.refused(reason);
}

void AdminSite::versionReported(std::string_view peer, std::string_view store,
                                std::string_view counter, std::string_view version) {
    activity_.versionReported(peer, store, counter, version);
}

Page AdminSite::answer(std::string_view method, std::string_view target, std::string_view host) {
    const std::size_t question = std::min(target.find('?'), target.size());
    const std::string_view path = target.substr(0, question);
    Page page;
    if (!isOwnHost(host)) {
        page = refusal(403, "This server is not known by the name in the request. Use its IP "
                            "address or a name that it was given.");
    } else if (path != "/" && path != "/health" && path != "/metrics") {
        page = refusal(404, "There is nothing here. There are /, /health and /metrics.");
    } else if (method != "GET" && method != "HEAD") {
        page = refusal(405, "This can only be read.");
        page.headers.emplace_back("Allow", "GET, HEAD");
    } else {
        page = found(path, target.substr(std::min(question + 1, target.size())));
    }
    page.headers.insert(
        page.headers.end(),
        {{"Content-Security-Policy", "default-src 'none'; style-src 'unsafe-inline'; base-uri "
                                     "'none'; form-action 'none'; frame-ancestors 'none'"},
         {"X-Content-Type-Options", "nosniff"},
         {"X-Frame-Options", "DENY"},
         {"Referrer-Policy", "no-referrer"},
         {"Cross-Origin-Resource-Policy", "same-origin"}});
    return page;
}

Page AdminSite::found(std::string_view path, std::string_view query) {
    if (path == "/health")
        return health();
    if (path == "/metrics")
        return {200, std::string(Metrics::ContentType), metrics_.text(askLoad_()), {}};
    // The health first: it may take a while, and the rest should be of now.
    HealthKeeper::Health health = health_.current();
    return {200,
            "text/html; charset=utf-8",
            adminPage({options_.version, std::move(health), askLoad_(), activity_.snapshot(),
                       query == "all"}),
            {}};
}

Page AdminSite::health() {
    const HealthKeeper::Health health = health_.current();
    Page page{health.allOk() ? 200U : 503U, PlainText, {}, {}};
    page.body = health.allOk() ? "ok\n" : "failed\n";
    for (const DatabaseHealth& database : health.databases) {
        page.body += (database.ok ? "ok: " : "failed: ") + shown(kept(database.name, 240));
        if (!database.ok)
            page.body += ": " + shown(kept(database.reason, 240));
        page.body += '\n';
    }
    return page;
}

bool AdminSite::isOwnHost(std::string_view host) const {
    const std::size_t colon = host.find(':', host.starts_with('[') ? host.find(']') : 0);
    const std::string_view port = host.substr(std::min(colon, host.size()));
    if (!port.empty() && !consistsOf(port.substr(1), "0123456789"))
        return false;
    std::string_view name = host.substr(0, colon);
    if (name.starts_with('[') && name.ends_with(']'))
        return isIpv6(name.substr(1, name.size() - 2));
    const auto isName = [&](std::string_view own) {
        return !own.empty() && data::equalIgnoringCase(name, own);
    };
    return isIpv4(name) || isName("localhost") ||
           std::any_of(options_.hostNames.begin(), options_.hostNames.end(), isName);
}

} // namespace quillet::headoffice::admin
