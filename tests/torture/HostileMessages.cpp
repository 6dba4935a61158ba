#include "tests/torture/HostileMessages.h"

#include "data/Error.h"
#include "db/ConnectionString.h"
#include "rds/http/HttpClient.h"

#include <boost/asio/read.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/write.hpp>

#include <algorithm>
#include <chrono>
#include <iostream>
#include <random>
#include <utility>

namespace quillet::torture {

namespace asio = boost::asio;
using asio::ip::tcp;
using boost::system::error_code;

namespace {

constexpr std::uint32_t Here = 0x7F000002;      // 127.0.0.2
constexpr std::uint32_t Elsewhere = 0x7F000003; // 127.0.0.3
constexpr auto Patience = std::chrono::seconds(8);
/// After so much without an answer, bytes that may be the start of something are said to be all. A
/// server may take that for the end of its caller, so whole calls do not say it.
constexpr auto Silence = std::chrono::milliseconds(400);

std::string requestOf(const rds::Call& call) {
    const std::string body = encodeCall(call);
    return rds::HttpClient::requestHead("localhost", callPath(call), body.size()) + body;
}

std::string replaced(std::string text, const std::string& what, const std::string& by) {
    if (const std::size_t place = text.find(what); place != std::string::npos)
        text.replace(place, what.size(), by);
    return text;
}

/// What the head office made of it.
std::string outcomeOf(const std::string& reply, std::size_t arguments) {
    const std::size_t body = reply.find("\r\n\r\n");
    if (body == std::string::npos)
        return "no reply";
    if (!reply.starts_with("HTTP/1.1 200"))
        return reply.substr(0, reply.find('\r'));
    try {
        const rds::Reply result = rds::decodeReply(reply.substr(body + 4), arguments);
        const bool* isDone = result.result ? std::get_if<bool>(&*result.result) : nullptr;
        return isDone != nullptr && !*isDone ? "refused" : "answered";
    } catch (const data::Error& error) {
        return "refused: " + error.Description();
    }
}

} // namespace

HostileMessages::HostileMessages(Target target) : target_(std::move(target)) {}

rds::Call HostileMessages::query(const std::string& sql, const std::string& connection) const {
    rds::Call call;
    call.progId = target_.object;
    call.method = "Getsql";
    call.arguments = {rds::Variant::string(sql), std::int16_t{0}, std::int16_t{1},
                      rds::Variant::string(""), rds::Variant::string(connection)};
    call.boundary = rds::newBoundary();
    return call;
}

rds::Call HostileMessages::command(const std::string& sql) const {
    rds::Call call;
    call.progId = "quorin.demon";
    call.method = "PUTSQL";
    call.arguments = {rds::Variant::strings({"", sql}), rds::Variant::string(""),
                      rds::Variant::string(target_.connection)};
    call.boundary = rds::newBoundary();
    return call;
}

/// The counter's connection string with other entries instead of some of its own.
std::string HostileMessages::with(const std::string& entries,
                                  const std::vector<std::string>& less) const {
    std::string text = target_.connection;
    for (const std::string& key : less)
        text = db::ConnectionString(text).without(key);
    return entries + text;
}

void HostileMessages::sendGarbage() {
    isGarbage_ = true;
    std::mt19937 random(target_.seed);
    const auto noise = [&random](std::size_t size) {
        std::string bytes(size, '\0');
        std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<char>(random()); });
        return bytes;
    };
    const rds::Call call = query("SELECT 1 AS A", target_.connection);
    const std::string body = encodeCall(call);
    const std::string whole = requestOf(call);
    const std::string length = "Content-Length: " + std::to_string(body.size());
    const auto head = [&call](std::size_t size) {
        return rds::HttpClient::requestHead("localhost", callPath(call), size);
    };

    for (int i = 0; i < 20; ++i)
        send("noise", noise(1U << (random() % 17)));
    for (int i = 0; i < 20; ++i) {
        const std::string bytes = noise(1 + random() % 4096);
        send("noise as a body", head(bytes.size()) + bytes);
    }
    for (int i = 0; i < 20; ++i) {
        const std::size_t size = random() % body.size();
        send("a cut body", head(size) + body.substr(0, size));
    }

    send("two lengths", replaced(whole, length, "Content-Length: 3\r\n" + length));
    send("a length and chunks", replaced(whole, length, length + "\r\nTransfer-Encoding: chunked"));
    send("chunks by halves", replaced(whole, length, "Transfer-Encoding: chunked, identity"));
    send("a length with more", replaced(whole, length, length + ", 3"));
    send("a negative length", replaced(whole, length, "Content-Length: -1"));
    send("a length beyond numbers",
         replaced(whole, length, "Content-Length: 18446744073709551617"));
    send("a name with a blank", replaced(whole, length, replaced(length, ":", " :")));
    send("a name with a NUL", replaced(whole, length, std::string("X\0Y: 1\r\n", 8) + length));
    send("no length", replaced(whole, length + "\r\n", ""));
    send("another version", replaced(whole, "HTTP/1.1", "HTTP/9.9"));
    send("a path above", replaced(whole, "/msadc/", "/msadc/../../"));
    send("a method without an object", replaced(whole, callPath(call), "/msadc/msadcs.dll/Getsql"));
    send("a long path", "POST /" + std::string(1U << 20U, 'a') + " HTTP/1.1\r\n\r\n");
    std::string endless = "POST " + callPath(call) + " HTTP/1.1\r\n";
    while (endless.size() < (1U << 20U))
        endless += "X-" + std::to_string(endless.size()) + ": y\r\n";
    send("a head without end", endless);
    send("a line without end",
         "POST " + callPath(call) + " HTTP/1.1\r\nX: " + std::string(1U << 20U, 'y'));

    for (const char* count : {"0", "65535", "4294967295", "-1", "five"}) {
        const std::string odd = replaced(body, "num-args=5", std::string("num-args=") + count);
        send(std::string("num-args ") + count, head(odd.size()) + odd);
    }
    rds::Call deep = call;
    for (int depth = 0; depth < 200; ++depth) {
        rds::VariantArray array;
        array.dimensions = {{1, 0}};
        array.elements = {deep.arguments[0]};
        deep.arguments[0] = rds::Variant(std::move(array));
    }
    send("arrays in arrays", requestOf(deep));
    rds::Call wide = call;
    wide.arguments[0] = rds::Variant::strings(std::vector<std::string>(40'000));
    send("an array of many", requestOf(wide));
    rds::VariantArray claimed;
    claimed.elementType = rds::VarType::UI1;
    claimed.dimensions = {{0x7FFFFFFF, 0}, {0x7FFFFFFF, 0}};
    wide.arguments[0] = rds::Variant(std::move(claimed));
    send("an array that says more than it has", requestOf(wide));
    rds::Call many = call;
    many.arguments.assign(1023, rds::Variant::string("x"));
    send("a thousand arguments", requestOf(many));

    ask("honest", call);
}

void HostileMessages::sendStatements() {
    // Nobody may be sent there.
    tcp::acceptor elsewhere(context_, {asio::ip::address_v4(Elsewhere), 0});
    elsewhere.non_blocking(true);
    const std::string& own = target_.connection;
    const std::string& folder = target_.folder;

    const std::pair<const char*, std::string> queries[] = {
        {"creates", "CREATE TABLE HOSTILE_A (A INT)"},
        {"creates with a comment", "/*!50000 CREATE TABLE HOSTILE_B (A INT) */"},
        {"creates with MariaDB's comment", "/*M! CREATE TABLE HOSTILE_C (A INT) */"},
        {"leaves its transaction", "BEGIN NOT ATOMIC COMMIT; CREATE TABLE HOSTILE_D (A INT); END"},
        {"leaves it behind a label",
         "x: BEGIN NOT ATOMIC COMMIT; CREATE TABLE HOSTILE_E (A INT); END"},
        {"runs a text", "EXECUTE IMMEDIATE 'CREATE TABLE HOSTILE_F (A INT)'"},
        {"two statements", "SELECT 1; CREATE TABLE HOSTILE_G (A INT)"},
        {"creates behind a comment", "-- SELECT 1\nCREATE TABLE HOSTILE_H (A INT)"},
        {"inserts", "INSERT INTO POS (RCT_CODE, POS_ID) VALUES ('9999', '91')"},
        {"inserts and returns",
         "INSERT INTO POS (RCT_CODE, POS_ID) VALUES ('9999', '92') RETURNING 1"},
        {"deletes", "DELETE FROM POS WHERE RCT_CODE = '9998'"},
        {"updates", "UPDATE POS SET RECEIVE_VER = 'hostile' WHERE RCT_CODE = '9998'"},
        {"loads a local file", "LOAD DATA LOCAL INFILE '" + folder +
                                   "/secret' INTO TABLE POS (RECEIVE_VER) "
                                   "SET RCT_CODE = '9999', POS_ID = '93'"},
        {"loads a file", "LOAD DATA INFILE '" + folder +
                             "/secret' INTO TABLE POS (RECEIVE_VER) SET "
                             "RCT_CODE = '9999', POS_ID = '94'"},
        {"writes a file", "SELECT 'hostile' INTO OUTFILE '" + folder + "/written'"},
        {"writes a file in the middle",
         "SELECT 'hostile' INTO DUMPFILE '" + folder + "/dumped' FROM POS LIMIT 1"},
        {"reads a file", "SELECT LOAD_FILE('" + folder + "/secret') AS A"},
        {"locks", "SELECT * FROM POS FOR UPDATE"},
        {"sets", "SET SESSION TRANSACTION READ WRITE"},
        {"kills", "KILL 1"},
    };
    for (const auto& [label, sql] : queries)
        ask(label, query(sql, own));

    const std::pair<const char*, std::string> commands[] = {
        {"command inserts", "INSERT INTO POS (RCT_CODE, POS_ID) VALUES ('9999', '95')"},
        {"command deletes", "DELETE FROM POS WHERE RCT_CODE = '9998'"},
        {"command updates all",
         "UPDATE POS SET RECEIVE_VER = RECEIVE_VER + 0 WHERE 1 = 1 OR POS_ID = ''"},
        {"command updates another table",
         "UPDATE RCTBAS SET BAS_NAME2 = 'hostile' WHERE RCT_CODE = '9998'"},
        {"command creates", "CREATE TABLE HOSTILE_I (A INT)"},
        {"command leaves its transaction",
         "BEGIN NOT ATOMIC COMMIT; CREATE TABLE HOSTILE_J (A INT); END"},
        {"command loads a local file", "LOAD DATA LOCAL INFILE '" + folder +
                                           "/secret' INTO TABLE POS "
                                           "(RECEIVE_VER) SET RCT_CODE = '9999', POS_ID = '96'"},
        {"command with a query in it",
         "UPDATE POS SET RECEIVE_VER = (SELECT USER()) WHERE POS_ID = '91' AND RCT_CODE = '9998'"},
    };
    for (const auto& [label, sql] : commands)
        ask(label, command(sql));

    const std::string port = std::to_string(elsewhere.local_endpoint().port());
    const std::pair<const char*, std::string> connections[] = {
        {"a driver's file", with("DRIVER=" + target_.driver + ";DATABASE=" + folder + "/planted-1;",
                                 {"DRIVER", "DATABASE"})},
        {"another driver",
         with("DRIVER={SQLite3};DATABASE=" + folder + "/planted-2;", {"DRIVER", "DATABASE"})},
        {"ignorable, another driver behind the right one",
         own + ";DRIVER={SQLite3};DATABASE=" + folder + "/planted-3"},
        {"another server", with("SERVER=127.0.0.3;PORT=" + port + ";", {"SERVER", "PORT"})},
        {"another server by another name",
         with("SERVERNAME=127.0.0.3;PORT=" + port + ";", {"SERVER", "PORT"})},
        {"another server in braces",
         with("SERVER={127.0.0.3};PORT={" + port + "};", {"SERVER", "PORT"})},
        {"another server's address as a number",
         with("SERVER=2130706435;PORT=" + port + ";", {"SERVER", "PORT"})},
        {"another port", with("PORT=1;", {"PORT"})},
        {"another database", with("DATABASE=mysql;", {"DATABASE"})},
        {"a source's name", with("DSN=hostile;", {"DRIVER"})},
        {"ignorable, a file with a source", "FILEDSN=" + folder + "/secret;" + own},
        {"ignorable, saves itself to a file", own + ";SAVEFILE=" + folder + "/saved"},
    };
    for (const auto& [label, connection] : connections)
        ask(label, query("SELECT 1 AS A", connection));
    ask("ignorable, a statement at the start",
        query("SELECT 1 AS A", "INITSTMT={CREATE TABLE HOSTILE_K (A INT)};" + own));
    ask("several statements at a time",
        query("SELECT 1; CREATE TABLE HOSTILE_L (A INT)", with("OPTION=67108864;", {"OPTION"})));

    error_code error;
    tcp::socket reached(context_);
    elsewhere.accept(reached, error);
    std::cout << "elsewhere: " << (error ? "nobody came" : "reached") << std::endl;
    ask("honest", query("SELECT 1 AS A", own));
}

void HostileMessages::ask(const std::string& label, const rds::Call& call) {
    send(label, requestOf(call), call.arguments.size());
}

void HostileMessages::send(const std::string& label, const std::string& request,
                           std::size_t arguments) {
    std::string reply = exchange(request);
    std::string outcome = outcomeOf(reply, arguments);
    if (reply.find("top-secret") != std::string::npos ||
        reply.find(std::string("t\0o\0p\0-\0s\0e\0c\0", 14)) != std::string::npos)
        outcome += ", with the secret";
    std::replace_if(
        outcome.begin(), outcome.end(), [](char c) { return c >= '\0' && c < ' '; }, ' ');
    std::cout << label << ": " << outcome << std::endl;
}

/// @return what comes back until the other end closes or time is over.
std::string HostileMessages::exchange(const std::string& request) {
    std::string reply;
    tcp::socket socket(context_, {asio::ip::address_v4(Here), 0});
    asio::steady_timer silence(context_);
    asio::steady_timer timer(context_, Patience);
    timer.async_wait([&](error_code stopped) {
        error_code ignored;
        if (!stopped)
            socket.close(ignored);
    });
    const auto done = [&] {
        silence.cancel();
        timer.cancel();
    };
    socket.async_connect(
        {asio::ip::address_v4::loopback(), target_.server}, [&](error_code failed) {
            if (failed)
                return done();
            asio::async_write(socket, asio::buffer(request), [&](error_code, std::size_t) {
                silence.expires_after(Silence);
                silence.async_wait([&](error_code stopped) {
                    error_code ignored;
                    if (!stopped && isGarbage_)
                        socket.shutdown(tcp::socket::shutdown_send, ignored);
                });
            });
            asio::async_read(socket, asio::dynamic_buffer(reply),
                             [&](error_code, std::size_t) { done(); });
        });
    context_.restart();
    context_.run();
    return reply;
}

} // namespace quillet::torture
