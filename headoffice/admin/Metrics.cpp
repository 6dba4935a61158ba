#include "headoffice/admin/Metrics.h"

#include "headoffice/admin/RefusalReason.h"
#include "headoffice/admin/SafeText.h"

#include <algorithm>
#include <utility>

namespace quillet::headoffice::admin {

namespace {

/// Exact, without a locale's decimal point.
std::string seconds(std::uint64_t milliseconds) {
    std::string fraction = std::to_string(1'000 + milliseconds % 1'000).substr(1);
    fraction.erase(fraction.find_last_not_of('0') + 1);
    return std::to_string(milliseconds / 1'000) + (fraction.empty() ? "" : '.' + fraction);
}

/// Lines of one metric after the other.
class Exposition {
public:
    void metric(std::string_view name, std::string_view type, std::string_view help) {
        name_ = "quillet_headoffice_";
        name_ += name;
        text_ += "# HELP " + name_ + ' ';
        text_ += help;
        text_ += "\n# TYPE " + name_ + ' ';
        text_ += type;
        text_ += '\n';
    }

    /// @param labels `name="value"`, values through labelValue().
    void sample(const std::string& labels, const std::string& value, std::string_view suffix = {}) {
        text_ += name_;
        text_ += suffix;
        if (!labels.empty())
            text_ += '{' + labels + '}';
        text_ += ' ' + value + '\n';
    }

    void sample(const std::string& labels, std::uint64_t value, std::string_view suffix = {}) {
        sample(labels, std::to_string(value), suffix);
    }

    void gauge(std::string_view name, std::string_view help, std::size_t value) {
        metric(name, "gauge", help);
        sample({}, value);
    }

    std::string take() { return std::move(text_); }

private:
    std::string text_;
    std::string name_;
};

std::string label(std::string_view name, std::string_view value) {
    return std::string(name) + "=\"" + labelValue(value) + '"';
}

} // namespace

Metrics::Metrics(std::string version) : version_(std::move(version)) {
    for (const char* const method : {"Getsql", "PUTSQL", "other"})
        methods_[method];
    for (const RefusalReason& reason : RefusalReasons)
        refused_[std::string(reason.label)] = 0;
}

void Metrics::callFinished(const rds::CallRecord& record) {
    const std::lock_guard lock(mutex_);
    const auto known = methods_.find(record.method);
    Method& method = known == methods_.end() ? methods_["other"] : known->second;
    ++(record.error.empty() ? method.ok : method.failed);
    const std::int64_t elapsed = std::max<std::int64_t>(record.elapsed.count(), 0);
    method.milliseconds += static_cast<std::uint64_t>(elapsed);
    method.rows += record.rows;
    method.bytes += record.bytes;
    const auto* const bound = std::lower_bound(Bounds.begin(), Bounds.end(), elapsed);
    if (bound != Bounds.end())
        ++method.within[static_cast<std::size_t>(bound - Bounds.begin())];
}

void Metrics::refused(std::string_view reason) {
    const std::lock_guard lock(mutex_);
    ++refused_[std::string(refusalReason(reason).label)];
}

std::string Metrics::text(const Load& load) const {
    std::unique_lock lock(mutex_);
    const auto methods = methods_;
    const auto refused = refused_;
    lock.unlock();

    Exposition out;
    out.metric("calls_total", "counter", "Calls answered, by method and outcome.");
    for (const auto& [name, method] : methods) {
        const std::string of = label("method", name) + ',';
        out.sample(of + label("outcome", "ok"), method.ok);
        out.sample(of + label("outcome", "failed"), method.failed);
    }

    out.metric("call_duration_seconds", "histogram", "How long calls took, by method.");
    for (const auto& [name, method] : methods) {
        const std::string of = label("method", name);
        const std::uint64_t count = method.ok + method.failed;
        std::uint64_t within = 0;
        for (std::size_t i = 0; i < Bounds.size(); ++i) {
            within += method.within[i];
            const std::string bound = seconds(static_cast<std::uint64_t>(Bounds[i]));
            out.sample(of + ',' + label("le", bound), within, "_bucket");
        }
        out.sample(of + ',' + label("le", "+Inf"), count, "_bucket");
        out.sample(of, seconds(method.milliseconds), "_sum");
        out.sample(of, count, "_count");
    }

    out.metric("rows_sent_total", "counter", "Rows sent to clients, by method.");
    for (const auto& [name, method] : methods)
        out.sample(label("method", name), method.rows);
    out.metric("sent_bytes_total", "counter", "Bytes of replies' bodies, by method.");
    for (const auto& [name, method] : methods)
        out.sample(label("method", name), method.bytes);

    out.metric("refused_total", "counter", "Connections and requests refused, by reason.");
    for (const auto& [reason, count] : refused)
        out.sample(label("reason", reason), count);

    out.gauge("calls_in_flight", "Calls being answered.", load.answering.now);
    out.gauge("calls_queued", "Calls waiting for their turn.", load.waiting.now);
    out.gauge("client_connections", "Open connections of clients.", load.connections.now);
    out.gauge("memory_in_use_bytes", "Memory that requests and replies under way hold.",
              load.memory.now);
    out.gauge("database_connections_open", "Database connections in use or kept for the next call.",
              load.databaseConnectionsOpen);
    out.gauge("database_connections_in_use", "Database connections in use.",
              load.databaseConnections.now);

    out.metric("build_info", "gauge", "Always 1; the label says which version runs.");
    out.sample(label("version", version_), std::uint64_t{1});
    return out.take();
}

} // namespace quillet::headoffice::admin
