#include "headoffice/Options.h"

#include "data/Error.h"
#include "headoffice/HttpOptions.h"
#include "headoffice/database/OpenDatabase.h"
#include "rds/http/AddressList.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <fstream>
#include <type_traits>
#include <utility>

namespace quillet::headoffice {

namespace {

[[noreturn]] void refuse(const std::string& sentence) {
    throw data::Error(data::number::InvalidArgument, sentence);
}

/// The options as CLI11 fills them: texts that are ours to understand, and plain numbers.
class CommandLine {
public:
    CommandLine() {
        app_.set_version_flag("--version", std::string("quillet-headoffice " QUILLET_VERSION ", ") +
                                               databaseLibrary());
        app_.set_config("--config", "", "a file with these options, as name = value")
            ->type_name("FILE");
        app_.allow_config_extras(CLI::config_extras_mode::error);
        app_.footer("Every call is one line on standard output. SIGINT or SIGTERM ends the server "
                    "after the\ncalls under way. Wrong options: exit code 2; "
                    "anything else that fails: 1.");
        addWho();
        addLimits();
        addOperation();
    }

    Options parse(std::vector<std::string> arguments) try {
        std::reverse(arguments.begin(), arguments.end());
        app_.parse(std::move(arguments));
        result_.listen = addressOf("--listen", listen_);
        if (!admin_.empty())
            result_.admin = addressOf("--admin", admin_);
        for (const auto& [name, value] :
             {std::pair("--driver", result_.driver), std::pair("--object", result_.queryObject)}) {
            if (value.empty())
                refuse(std::string(name) + " needs a name.");
        }
        result_.allow = listOf(allow_);
        result_.adminAllow = listOf(adminAllow_);
        for (const std::string& database : databases_)
            result_.databases.push_back(DatabaseName::parse(database));
        return std::move(result_);
    } catch (const CLI::CallForHelp&) {
        return informing(app_.help());
    } catch (const CLI::CallForVersion&) {
        return informing(app_.version() + '\n');
    } catch (const CLI::ParseError& error) {
        std::string sentence = error.what();
        std::replace(sentence.begin(), sentence.end(), '\n', ' ');
        refuse(sentence + "; --help lists the options.");
    }

private:
    void addWho() {
        add("--listen", listen_, "ADDRESS:PORT", "where counters call; port 0: any free one");
        add("--allow", allow_, "CIDR", "networks of callers (default: this machine)");
        add("--database", databases_, "HOST[:PORT]/NAME",
            "databases that callers may name (default: those of this machine)");
        add("--driver", result_.driver, "NAME", "the driver that counters name");
        add("--writable", result_.writable, "TABLE",
            "tables that counters may update beside the version they report");
        add("--object", result_.queryObject, "PROGID", "name of the data object");
        app_.add_flag("--return-arguments", result_.returnArguments,
                      "send by-reference arguments back with their values");
    }

    void addLimits() {
        add("--workers", result_.workers, 1, 256, "calls that are answered at once");
        add("--connections", result_.connections, 1, 65535, "connections that are kept");
        add("--queue", result_.queue, 1, 65535, "calls that wait for a worker");
        add("--body-limit", result_.bodyLimit, 1, 65536, "largest request, in KiB");
        add("--memory", result_.memory, 1, 1048576, "for requests and replies under way, in MiB");
        addSeconds("--head-seconds", result_.headTime, 1, "for the head of a request");
        addSeconds("--body-seconds", result_.bodyTime, 1, "for its body");
        addSeconds("--query-seconds", result_.queryTime, 1, "for the database");
        addSeconds("--reply-seconds", result_.replyTime, 1, "for the whole reply");
        addSeconds("--drain", result_.drain, 0, "for calls under way when the server is ended");
    }

    void addOperation() {
        add("--admin", admin_, "ADDRESS:PORT", "where to serve /health, /metrics and a page");
        add("--admin-allow", adminAllow_, "CIDR", "who may see them (default: this machine)");
        add("--user", result_.user, "NAME", "as whom --check and /health look at the databases");
        add("--password-file", result_.passwordFile, "FILE", "that user's password");
        add("--port-file", result_.portFile, "FILE", "write the port there once calls are taken");
        add("--admin-port-file", result_.adminPortFile, "FILE", "the same for --admin");
        app_.add_flag("--check", result_.check, "open the databases, say what is wrong, end")
            ->configurable(false);
    }

    template <typename Value>
    void add(const char* name, Value& value, const char* type, const char* what) {
        CLI::Option* const option = app_.add_option(name, value, what)->type_name(type);
        if constexpr (std::is_same_v<Value, std::string>)
            option->capture_default_str();
    }

    void add(const char* name, std::size_t& value, std::size_t least, std::size_t most,
             const char* what) {
        app_.add_option(name, value, what)
            ->type_name("N")
            ->check(CLI::Range(least, most))
            ->capture_default_str();
    }

    void addSeconds(const char* name, std::chrono::seconds& value, std::int64_t least,
                    const char* what) {
        app_.add_option_function<std::int64_t>(
                name, [&value](std::int64_t seconds) { value = std::chrono::seconds(seconds); },
                std::string("seconds ") + what)
            ->type_name("SECONDS")
            ->check(CLI::Range(least, std::int64_t{86400}))
            ->default_str(std::to_string(value.count()));
    }

    static HostPort addressOf(const std::string& name, const std::string& text) {
        const auto address = HostPort::parse(text);
        if (!address)
            refuse(name + " takes ADDRESS:PORT, not '" + text + "'.");
        return *address;
    }

    static std::string listOf(const std::vector<std::string>& networks) {
        std::string list;
        for (const std::string& network : networks) {
            rds::AddressList::parse(network); // so that none is empty
            list += network + ' ';
        }
        return list;
    }

    static Options informing(std::string text) {
        Options result;
        result.information = std::move(text);
        return result;
    }

    CLI::App app_{"Serves the head office's database to the counters: the data object (Getsql) and "
                  "the command\nobject quorin.demon (PUTSQL). Queries only read, and commands "
                  "write what counters write.",
                  "quillet-headoffice"};
    Options result_;
    std::string listen_ = result_.listen.text();
    std::string admin_;
    std::vector<std::string> allow_;
    std::vector<std::string> adminAllow_;
    std::vector<std::string> databases_;
};

bool isNameCharacter(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' ||
           c == '$';
}

/// What would open the server to more than its options name.
void requireClosed(const Options& options) {
    const std::string address = options.listen.text();
    if (!options.listen.isLoopback() && options.allow.empty())
        refuse("Listening on " + address +
               " needs to know who may call: write --allow with the "
               "network of the counters, for example --allow 10.0.0.0/8.");
    if (!options.listen.isLoopback() && options.databases.empty())
        refuse("Listening on " + address +
               " needs to know for which databases: write --database, "
               "for example --database 127.0.0.1/chain.");
    if (!options.admin.host.empty() && !options.admin.isLoopback() && options.adminAllow.empty())
        refuse("Showing the state on " + options.admin.text() +
               " needs to know to whom: write "
               "--admin-allow, for example --admin-allow 10.1.2.0/24.");
}

/// What contradicts itself, or cannot be.
void requirePossible(const Options& options) {
    if (options.check && options.databases.empty())
        refuse("--check looks at the databases that --database names, and there is none.");
    for (const std::string& table : options.writable) {
        if (!std::all_of(table.begin(), table.end(), isNameCharacter) || table.empty())
            refuse("'" + table + "' is no table's name.");
    }
    if (!options.passwordFile.empty() && options.user.empty())
        refuse("--password-file is for the user that --user names, and there is none.");
    if (!options.passwordFile.empty() && !std::ifstream(options.passwordFile))
        refuse("The password's file " + options.passwordFile.string() + " cannot be read.");
    counterOptions(options).check();
}

} // namespace

Options parseOptions(const std::vector<std::string>& arguments) {
    Options options = CommandLine().parse(arguments);
    if (options.information.empty()) {
        requireClosed(options);
        requirePossible(options);
    }
    return options;
}

} // namespace quillet::headoffice
