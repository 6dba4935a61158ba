#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace quillet::torture {

/// Many connections to a head office at once, from addresses of this machine beside the counter's
/// (127.0.0.2 and on), each of which does one thing and, when it has ended, may do it again.
class HostileClients {
public:
    /// What a client does once it has sent its request.
    enum class Then {
        Stays,  ///< waits for the end of the connection
        Drips,  ///< the same, and sends a byte every second
        Leaves, ///< hangs up at once
        Ignores ///< stays and reads nothing
    };

    struct Plan {
        std::uint16_t server = 0;  ///< port
        std::size_t clients = 1;   ///< at the same time
        std::size_t addresses = 1; ///< from which they come, in turn
        std::size_t rounds = 1;    ///< how often each connects at most
        std::string request;
        std::size_t padding = 0; ///< bytes that follow the request, in pieces
        Then then = Then::Stays;
        std::chrono::seconds duration{20};
    };

    explicit HostileClients(Plan plan);
    ~HostileClients();
    HostileClients(const HostileClients&) = delete;
    HostileClients& operator=(const HostileClients&) = delete;

    /// Until nobody is left, the time is over, or the process is told to end. Prints "attacking" as
    /// soon as every client has sent its request or was refused, and how many connections there
    /// were at the end.
    void run();

private:
    class Client;

    void began();
    void ended(std::size_t client, std::size_t round);
    void start(std::size_t client, std::size_t round);

    Plan plan_;
    boost::asio::io_context context_{1};
    boost::asio::steady_timer end_{context_};
    std::vector<std::shared_ptr<Client>> clients_;
    std::array<char, 65536> scratch_{}; ///< what is read and not looked at
    std::size_t begun_ = 0;
    std::size_t connections_ = 0;
    std::size_t refused_ = 0; ///< without a connection
};

} // namespace quillet::torture
