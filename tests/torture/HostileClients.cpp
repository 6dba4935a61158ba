#include "tests/torture/HostileClients.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/write.hpp>

#include <algorithm>
#include <csignal>
#include <iostream>
#include <utility>

namespace quillet::torture {

namespace asio = boost::asio;
using asio::ip::tcp;
using boost::system::error_code;

namespace {

constexpr std::uint32_t FirstAddress = 0x7F000002; // 127.0.0.2
constexpr auto Pause = std::chrono::milliseconds(50);
constexpr auto DripTime = std::chrono::seconds(1);

} // namespace

class HostileClients::Client : public std::enable_shared_from_this<Client> {
public:
    Client(HostileClients& all, std::size_t number, std::size_t round)
        : all_(all), number_(number), round_(round), socket_(all.context_), timer_(all.context_) {}

    void start() {
        error_code error;
        socket_.open(tcp::v4(), error);
        if (all_.plan_.then == Then::Ignores)
            socket_.set_option(tcp::socket::receive_buffer_size(4096), error);
        const auto address =
            static_cast<std::uint32_t>(FirstAddress + number_ % all_.plan_.addresses);
        socket_.bind({asio::ip::address_v4(address), 0}, error);
        socket_.async_connect(
            {asio::ip::address_v4::loopback(), all_.plan_.server},
            [self = shared_from_this()](error_code failed) { self->connected(failed); });
    }

    void close() {
        error_code ignored;
        socket_.close(ignored);
        timer_.cancel();
    }

private:
    void connected(error_code error) {
        if (error) {
            ++all_.refused_;
            return end();
        }
        ++all_.connections_;
        if (all_.plan_.then != Then::Ignores && all_.plan_.then != Then::Leaves)
            read();
        asio::async_write(
            socket_, asio::buffer(all_.plan_.request),
            [self = shared_from_this()](error_code failed, std::size_t) { self->sent(failed); });
    }

    void sent(error_code error) {
        begin();
        if (error)
            return end();
        if (padded_ < all_.plan_.padding)
            return pad();
        switch (all_.plan_.then) {
        case Then::Drips:
            return drip();
        case Then::Leaves:
            return end();
        case Then::Stays:
        case Then::Ignores:
            return;
        }
    }

    void pad() {
        static const std::string piece(65536, 'x');
        const std::size_t size = std::min(piece.size(), all_.plan_.padding - padded_);
        padded_ += size;
        asio::async_write(
            socket_, asio::buffer(piece, size),
            [self = shared_from_this()](error_code failed, std::size_t) { self->sent(failed); });
    }

    void drip() {
        timer_.expires_after(DripTime);
        timer_.async_wait([self = shared_from_this()](error_code stopped) {
            if (stopped)
                return;
            static constexpr char Drop = 'x';
            asio::async_write(self->socket_, asio::buffer(&Drop, 1),
                              [self](error_code failed, std::size_t) { self->sent(failed); });
        });
    }

    void read() {
        socket_.async_read_some(asio::buffer(all_.scratch_),
                                [self = shared_from_this()](error_code error, std::size_t) {
                                    if (error)
                                        self->end();
                                    else
                                        self->read();
                                });
    }

    void begin() {
        if (!std::exchange(hasBegun_, true) && round_ == 0)
            all_.began();
    }

    void end() {
        begin();
        close();
        if (!std::exchange(hasEnded_, true))
            all_.ended(number_, round_);
    }

    HostileClients& all_;
    std::size_t number_;
    std::size_t round_;
    tcp::socket socket_;
    asio::steady_timer timer_;
    std::size_t padded_ = 0;
    bool hasBegun_ = false;
    bool hasEnded_ = false;
};

HostileClients::HostileClients(Plan plan) : plan_(std::move(plan)), clients_(plan_.clients) {}

HostileClients::~HostileClients() = default;

void HostileClients::run() {
    asio::signal_set signals(context_, SIGINT, SIGTERM);
    signals.async_wait([this](error_code, int) { context_.stop(); });
    end_.expires_after(plan_.duration);
    end_.async_wait([this](error_code) { context_.stop(); });
    for (std::size_t client = 0; client < clients_.size(); ++client)
        start(client, 0);
    context_.run();
    std::cout << connections_ << " connections, " << refused_ << " refused" << std::endl;
}

void HostileClients::start(std::size_t client, std::size_t round) {
    clients_[client] = std::make_shared<Client>(*this, client, round);
    clients_[client]->start();
}

void HostileClients::began() {
    if (++begun_ == clients_.size())
        std::cout << "attacking" << std::endl;
}

/// Nobody comes back at once: that would be another attack.
void HostileClients::ended(std::size_t client, std::size_t round) {
    if (round + 1 >= plan_.rounds)
        return;
    auto timer = std::make_shared<asio::steady_timer>(context_, Pause);
    timer->async_wait([this, timer, client, round](error_code) { start(client, round + 1); });
}

} // namespace quillet::torture
