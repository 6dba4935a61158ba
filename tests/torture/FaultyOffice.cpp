#include "tests/torture/FaultyOffice.h"

#include "data/Error.h"
#include "rds/http/HttpClient.h"
#include "tests/support/ScriptedServer.h"
#include "tests/torture/TamperedReply.h"

#include <algorithm>
#include <array>
#include <iostream>
#include <thread>

namespace quillet::torture {

namespace {

using boost::asio::ip::tcp;
using tests::receiveRaw;
using tests::receiveUntil;
using tests::sendRaw;

constexpr std::array<std::string_view, 14> Faults{"", // none
                                                  "closed",  "reset", "silent", "error", "page",
                                                  "query",   "wait",  "slow",   "cut",   "garbage",
                                                  "columns", "more",  "fewer"};

bool isKnown(const std::string& fault) {
    return std::find(Faults.begin(), Faults.end(), fault) != Faults.end();
}

rds::Call callOf(const std::string& request) {
    const std::size_t path = request.find(' ') + 1;
    const std::size_t body = request.find("\r\n\r\n") + 4;
    return rds::decodeCall(request.substr(path, request.find(' ', path) - path),
                           std::string_view(request).substr(body));
}

/// The same call with a statement that no database knows.
std::string withBrokenStatement(rds::Call call) {
    constexpr const char* Broken = "SELECT nothing FROM nowhere";
    call.arguments.front() = call.arguments.front().isArray() ? rds::Variant::strings({"", Broken})
                                                              : rds::Variant::string(Broken);
    const std::string body = encodeCall(call);
    return rds::HttpClient::requestHead("localhost", callPath(call), body.size()) + body;
}

/// For people.
std::string nameOf(const rds::Call& call) {
    constexpr std::size_t Enough = 60;
    const rds::Variant& statement = call.arguments.front();
    std::string name = call.method + (statement.isArray() ? "" : statement.toText());
    name.resize(std::min(name.size(), Enough));
    std::replace(name.begin(), name.end(), '\n', ' ');
    return name;
}

} // namespace

FaultyOffice::FaultyOffice(Plan plan)
    : plan_(std::move(plan)), random_(plan_.seed),
      acceptor_(context_, tcp::endpoint(boost::asio::ip::address_v4::loopback(), 0)) {
    if (!isKnown(plan_.fault) || plan_.fault.empty() != (plan_.call < 1))
        throw data::Error(data::number::InvalidArgument, "'" + plan_.fault + "' is no fault");
}

void FaultyOffice::run() {
    for (int number = 1;; ++number) {
        tcp::socket counter(context_);
        acceptor_.accept(counter);
        // Every body ends in its closing delimiter.
        const std::string request = receiveUntil(counter, "--\r\n");
        if (request.empty()) { // somebody has looked whether we are there
            --number;
            continue;
        }
        const rds::Call call = callOf(request);
        const bool isMeant =
            number == plan_.call || (plan_.isLasting && number > plan_.call && plan_.call > 0);
        std::cout << number << ' ' << nameOf(call) << ": " << std::flush;
        if (isMeant)
            std::cout << answer(counter, request, call) << std::endl;
        else {
            sendRaw(counter, ask(request));
            std::cout << "passed on" << std::endl;
        }
    }
}

std::string FaultyOffice::answer(Socket& counter, const std::string& request,
                                 const rds::Call& call) {
    const std::string done = "hit, " + plan_.fault;
    // Before the counter can have noticed.
    if (plan_.fault == "silent" || plan_.fault == "wait")
        std::cout << done << std::flush;
    if (refuse(counter))
        return done;
    if (plan_.fault == "wait") {
        while (!std::filesystem::exists(plan_.file))
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        sendRaw(counter, ask(request));
        return ", over";
    }
    const std::string reply = ask(plan_.fault == "query" ? withBrokenStatement(call) : request);
    if (plan_.fault == "slow") {
        sendSlowly(counter, reply);
        return done;
    }
    const TamperedReply tampered(reply, call);
    std::string seen = reply;
    try {
        if (plan_.fault == "cut")
            seen = tampered.cut(random_);
        else if (plan_.fault == "garbage")
            seen = tampered.garbled(random_);
        else if (plan_.fault == "columns")
            seen = tampered.withoutLastColumn();
        else if (plan_.fault == "more")
            seen = tampered.announcing(+7);
        else if (plan_.fault == "fewer")
            seen = tampered.announcing(-1);
    } catch (const data::Error& error) {
        sendRaw(counter, reply);
        return "passed on, " + error.Description();
    }
    sendRaw(counter, seen);
    return done + ", " + std::to_string(seen.size()) + " bytes of " + std::to_string(reply.size());
}

bool FaultyOffice::refuse(Socket& counter) {
    if (plan_.fault == "reset")
        counter.set_option(boost::asio::socket_base::linger(true, 0));
    else if (plan_.fault == "silent")
        receiveRaw(counter); // until the counter goes
    else if (plan_.fault == "error")
        sendRaw(counter, TamperedReply::serverError());
    else if (plan_.fault == "page")
        sendRaw(counter, TamperedReply::webPage());
    else
        return plan_.fault == "closed";
    return true;
}

/// A head office that does not answer leaves the counter without an answer as well.
std::string FaultyOffice::ask(const std::string& request) {
    tcp::socket office(context_);
    boost::system::error_code error;
    office.connect({boost::asio::ip::address_v4::loopback(), plan_.office}, error);
    if (error)
        return {};
    sendRaw(office, request);
    return receiveRaw(office);
}

void FaultyOffice::sendSlowly(Socket& counter, const std::string& reply) const {
    constexpr std::size_t Pieces = 25;
    const std::size_t size = reply.size() / Pieces + 1;
    for (std::size_t start = 0; start < reply.size(); start += size) {
        std::this_thread::sleep_for(std::chrono::milliseconds(80));
        sendRaw(counter, std::string_view(reply).substr(start, size));
    }
}

} // namespace quillet::torture
