#include "rds/http/NetworkErrors.h"

#include <boost/asio/error.hpp>
#include <boost/beast/core/error.hpp>
#include <boost/beast/http/error.hpp>

namespace quillet::rds {

std::string reasonOf(boost::system::error_code error) {
    namespace asio = boost::asio;
    namespace http = boost::beast::http;

    if (error == boost::beast::error::timeout || error == asio::error::timed_out)
        return "no answer in time";
    if (error == asio::error::connection_refused)
        return "connection refused";
    if (error == asio::error::host_not_found || error == asio::error::host_not_found_try_again ||
        error == asio::error::no_data)
        return "host not found";
    if (error == asio::error::host_unreachable || error == asio::error::network_unreachable)
        return "network unreachable";
    if (error == asio::error::address_in_use)
        return "address already in use";
    if (error == asio::error::access_denied)
        return "permission denied";
    if (error == asio::error::connection_reset || error == asio::error::broken_pipe ||
        error == asio::error::connection_aborted)
        return "connection reset";
    if (error == asio::error::eof || error == http::error::end_of_stream)
        return "connection closed without a reply";
    if (error == http::error::partial_message)
        return "the reply is cut short";
    if (error == http::error::body_limit)
        return "the reply is too large";
    if (error.category() == make_error_code(http::error::bad_version).category())
        return "the reply is not HTTP (" + error.message() + ")";
    return "system error " + std::to_string(error.value());
}

} // namespace quillet::rds
