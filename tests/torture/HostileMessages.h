#pragma once

#include "rds/Call.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>

#include <cstdint>
#include <string>
#include <vector>

namespace quillet::torture {

/// What no head office may do, asked of one in turn, from 127.0.0.2.
class HostileMessages {
public:
    struct Target {
        std::uint16_t server = 0; ///< port
        std::string object;       ///< ProgID of the data object
        std::string connection;   ///< a counter's connection string
        std::string folder;       ///< where files would come to be; has `secret` in it
        std::string driver;       ///< an ODBC driver's file
        std::uint32_t seed = 1;
    };

    explicit HostileMessages(Target target);

    /// Bytes that are no call, or might be two: noise, heads that say two lengths or never end,
    /// bodies that count wrong or nest without end.
    void sendGarbage();

    /// Calls that are whole, for what is not a counter's to do: statements that write, read files
    /// or leave their transaction, and connection strings that name another driver, database or
    /// server. What does no harm where it is not taken is labelled as ignorable.
    void sendStatements();

private:
    using Socket = boost::asio::ip::tcp::socket;

    rds::Call query(const std::string& sql, const std::string& connection) const;
    rds::Call command(const std::string& sql) const;
    std::string with(const std::string& entries, const std::vector<std::string>& less) const;

    /// Prints a line: the label, and `answered` if it was taken for a call and done, or why not.
    void ask(const std::string& label, const rds::Call& call);
    void send(const std::string& label, const std::string& request, std::size_t arguments = 5);
    std::string exchange(const std::string& request);

    Target target_;
    bool isGarbage_ = false;
    boost::asio::io_context context_;
};

} // namespace quillet::torture
