// torture_hostile: clients that mean a head office's server ill. scripts/torture.d/80-hostile.sh
// says which kinds there are and what must not come of them.

#include "rds/http/HttpClient.h"
#include "tests/torture/HostileClients.h"
#include "tests/torture/HostileMessages.h"

#include <exception>
#include <iostream>
#include <stdexcept>

using namespace quillet;
using torture::HostileClients;
using torture::HostileMessages;

namespace {

std::string requestOf(const HostileMessages::Target& target, const std::string& sql) {
    rds::Call call;
    call.progId = target.object;
    call.method = "Getsql";
    call.arguments = {rds::Variant::string(sql), std::int16_t{0}, std::int16_t{1},
                      rds::Variant::string(""), rds::Variant::string(target.connection)};
    call.boundary = rds::newBoundary();
    const std::string body = encodeCall(call);
    return rds::HttpClient::requestHead("localhost", callPath(call), body.size()) + body;
}

/// The head of a command and the start of its body, which is of this size.
std::string announcement(std::size_t size) {
    return rds::HttpClient::requestHead("localhost", "/msadc/msadcs.dll/quorin.demon.PUTSQL",
                                        size) +
           "ADCClientVersion:01.06\r\n";
}

HostileClients::Plan planOf(const std::string& kind, const HostileMessages::Target& target) {
    HostileClients::Plan plan;
    plan.server = target.server;
    if (kind == "half-heads") {
        plan.clients = 300, plan.addresses = 10, plan.rounds = 20;
        plan.request = "POST /msadc/msadcs.dll/quorin.data.Getsql HTTP/1.1\r\nUser-Agent: ACTI";
    } else if (kind == "drip-body") {
        plan.clients = 300, plan.addresses = 10, plan.rounds = 20;
        plan.request = announcement(100'000);
        plan.then = HostileClients::Then::Drips;
    } else if (kind == "leavers") {
        plan.clients = 64;
        plan.request = requestOf(target, "SELECT SLEEP(30) AS A");
        plan.then = HostileClients::Then::Leaves;
    } else if (kind == "unread") {
        plan.clients = 20;
        plan.request = requestOf(target, "SELECT A.* FROM CT AS A, CT AS B LIMIT 200000");
        plan.then = HostileClients::Then::Ignores;
    } else if (kind == "large-bodies") {
        constexpr std::size_t Size = std::size_t{60} << 20U;
        plan.clients = 8, plan.addresses = 4, plan.rounds = 5;
        plan.request = announcement(Size);
        plan.padding = Size - 64; // never whole, so that it is kept until the end
    } else if (kind == "handles") {
        plan.clients = 200, plan.addresses = 10;
    } else if (kind == "flood") {
        plan.clients = 200, plan.rounds = 50;
        plan.request = requestOf(target, "SELECT 1 AS A");
    } else
        throw std::invalid_argument("'" + kind + "' is no kind of attack");
    return plan;
}

} // namespace

int main(int argc, char** argv) {
    try {
        HostileMessages::Target target;
        std::string kind;
        for (int i = 1; i < argc; i += 2) {
            const std::string name = argv[i];
            if (i + 1 == argc)
                throw std::invalid_argument(name + " needs a value");
            const std::string value = argv[i + 1];
            if (name == "--kind")
                kind = value;
            else if (name == "--server")
                target.server = static_cast<std::uint16_t>(std::stoi(value));
            else if (name == "--object")
                target.object = value;
            else if (name == "--connection")
                target.connection = value;
            else if (name == "--folder")
                target.folder = value;
            else if (name == "--driver")
                target.driver = value;
            else if (name == "--seed")
                target.seed = static_cast<std::uint32_t>(std::stoul(value));
            else
                throw std::invalid_argument(name + " is not one of --kind NAME, --server PORT, "
                                                   "--object PROGID, --connection STRING, --folder "
                                                   "FOLDER, --driver FILE, --seed N");
        }
        if (kind == "garbage")
            HostileMessages(target).sendGarbage();
        else if (kind == "sql")
            HostileMessages(target).sendStatements();
        else
            HostileClients(planOf(kind, target)).run();
    } catch (const std::exception& error) {
        std::cerr << "torture_hostile: " << error.what() << '\n';
        return 1;
    }
}
