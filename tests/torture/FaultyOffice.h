#pragma once

#include "rds/Call.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>

#include <cstdint>
#include <filesystem>
#include <random>
#include <string>

namespace quillet::torture {

/// Stands between a counter and its head office, numbers the calls from 1, and hands all of them on
/// but those that a fault is for:
///
///   closed, reset            the connection ends without a byte, in order or not
///   silent                   no byte ever comes
///   error                    HTTP 500
///   page                     a web page
///   query                    the statement is not SQL, so that the database itself complains
///   wait                     handed on as soon as a file is there
///   slow                     the reply comes in small pieces
///   cut                      it ends at some byte
///   garbage                  some bytes of its body are others
///   columns                  its recordset has no last column
///   more, fewer              it announces another number of rows
///
/// Prints a line for each call; one that got its fault has "hit" in it. Replies are the real head
/// office's, and what columns, more and fewer make of them is as whole as those.
class FaultyOffice {
public:
    struct Plan {
        std::uint16_t office = 0; ///< port of the real one
        std::string fault;
        int call = 0;
        bool isLasting = false; ///< it and all after it
        std::uint32_t seed = 1;
        std::filesystem::path file; ///< that `wait` waits for
    };

    /// @throws data::Error for a fault that is not known.
    explicit FaultyOffice(Plan plan);

    std::uint16_t port() const { return acceptor_.local_endpoint().port(); }

    /// One call after the other, until the process ends.
    [[noreturn]] void run();

private:
    using Socket = boost::asio::ip::tcp::socket;

    /// @return what was done to it.
    std::string answer(Socket& counter, const std::string& request, const rds::Call& call);
    /// Faults of which the head office hears nothing. @return whether it was one.
    bool refuse(Socket& counter);
    std::string ask(const std::string& request);
    void sendSlowly(Socket& counter, const std::string& reply) const;

    Plan plan_;
    std::mt19937 random_;
    boost::asio::io_context context_;
    boost::asio::ip::tcp::acceptor acceptor_;
};

} // namespace quillet::torture
