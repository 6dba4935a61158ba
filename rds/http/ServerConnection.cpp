#include "rds/http/ServerConnection.h"

#include "rds/http/BufferedReply.h"
#include "rds/http/ConnectionTable.h"
#include "rds/http/ReplyHead.h"

#include <boost/asio/post.hpp>
#include <boost/asio/write.hpp>

#include <algorithm>
#include <exception>
#include <utility>

namespace quillet::rds {

namespace {

namespace asio = boost::asio;
using asio::ip::tcp;
using boost::system::error_code;
using Refusal = HttpServer::Refusal;

constexpr auto LingerTime = std::chrono::seconds(1);
/// Bytes behind a request; clients that send more before they have their reply are up to no good.
constexpr std::size_t MaxIgnored = 64U << 10U;

RequestRefusal refusalOf(Refusal reason) {
    switch (reason) {
    case Refusal::NotAllowed:
        return {reason, 403, "This server does not know you"};
    case Refusal::NoRoom:
        return {reason, 503, "Too many connections"};
    default:
        return {reason, 503, "The server is busy"};
    }
}

} // namespace

ServerConnection::ServerConnection(const ServerParts& parts, tcp::socket socket,
                                   const tcp::endpoint& peer)
    : parts_(parts), socket_(std::move(socket)), address_(peer),
      deadline_(socket_.get_executor(), [this] { timeIsUp(); }),
      charge_(parts.budget, address_.client) {
    error_code ignored;
    socket_.set_option(tcp::no_delay(true), ignored);
}

// Reading

void ServerConnection::start() {
    limit(since_ + parts_.options.headTime);
    reader_.emplace(parts_.options.maxBody, charge_);
    reader_->readHead(socket_, [self = shared_from_this()](error_code error, std::size_t) {
        if (self->state_ != State::Reading)
            return;
        if (const auto refusal = RequestReader::refusalOf(error))
            self->answer(*refusal);
        else if (error)
            self->close();
        else
            self->readBody();
    });
}

void ServerConnection::readBody() {
    const auto& admits = parts_.options.admits;
    if (admits && !admits->contains(address_.host))
        refuse(Refusal::NotAllowed);
    else if (const auto refusal = reader_->checkHead())
        answer(*refusal);
    else {
        limit(Clock::now() + parts_.options.bodyTime);
        if (!reader_->isDone() && reader_->expectsContinue())
            sendContinue();
        else
            readOn();
    }
}

void ServerConnection::sendContinue() {
    static constexpr std::string_view Continue = "HTTP/1.1 100 Continue\r\n\r\n";
    asio::async_write(socket_, asio::buffer(Continue.data(), Continue.size()),
                      [self = shared_from_this()](error_code error, std::size_t) {
                          if (self->state_ != State::Reading)
                              return;
                          if (error)
                              self->close();
                          else
                              self->readOn();
                      });
}

void ServerConnection::readOn() {
    if (reader_->isDone()) {
        requestComplete();
        return;
    }
    reader_->readPiece(socket_, [self = shared_from_this()](error_code error, std::size_t) {
        if (self->state_ != State::Reading)
            return;
        if (const auto refusal = self->reader_->takePiece(error))
            self->answer(*refusal);
        else if (error)
            self->close();
        else
            self->readOn();
    });
}

void ServerConnection::requestComplete() {
    if (!parts_.connections.mayEngage(client())) {
        refuse(Refusal::QueueFull);
        return;
    }
    request_ = reader_->release();
    reader_.reset();
    bodySize_ = request_.body.size();
    request_.peer = address_.text;
    gone_ = std::stop_source();
    request_.gone = gone_.get_token();
    state_ = State::Queued;
    limit(Deadline::Never);
    watch();
    parts_.admission.offer(shared_from_this());
}

// Refusing

void ServerConnection::refuse(Refusal reason) {
    answer(refusalOf(reason));
}

void ServerConnection::answer(const RequestRefusal& refusal) {
    tell(refusal.reason);
    state_ = State::Refusing;
    reader_.reset();
    request_ = {};
    releaseMemory();
    limit(Clock::now() + LingerTime);
    sending_ = errorReply(refusal.status, refusal.text);
    asio::async_write(socket_, asio::buffer(sending_),
                      [self = shared_from_this()](error_code error, std::size_t) {
                          if (self->state_ != State::Refusing)
                              return;
                          if (error)
                              self->close();
                          else
                              self->linger();
                      });
}

void ServerConnection::releaseMemory() {
    charge_.keep(0);
    parts_.admission.dispatch();
}

void ServerConnection::tell(Refusal reason) const noexcept {
    try {
        if (parts_.options.onRefusal)
            parts_.options.onRefusal(reason, address_.text);
    } catch (const std::exception&) { // its own affair
    }
}

// On the worker

bool ServerConnection::prepare() {
    if (!charge_.grow(parts_.options.workingMemory(bodySize_)))
        return false;
    running_ = true;
    state_ = State::Answering;
    replyEnd_ = Clock::now() + parts_.options.replyTime;
    limit(replyEnd_);
    buffer_.emplace(parts_.options.replyBuffer, [this] {
        asio::post(socket_.get_executor(), [self = shared_from_this()] { self->sendPending(); });
    });
    return true;
}

void ServerConnection::run() noexcept {
    BufferedReply reply(*buffer_, request_.method != "HEAD");
    try {
        try {
            parts_.handler(request_, reply);
            reply.finish();
        } catch (...) {
            if (reply.hasBegun())
                throw;
            reply.error(500, "Internal server error");
        }
        buffer_->finish();
    } catch (...) {
        buffer_->breakOff();
    }
    request_ = {};
}

void ServerConnection::ended() {
    running_ = false;
    if (state_ != State::Answering) {
        charge_.keep(0);
        return;
    }
    charge_.keep(parts_.options.replyBuffer);
    sendPending();
}

// Watching for the client's end

void ServerConnection::watch() {
    if (watching_)
        return;
    watching_ = true;
    socket_.async_read_some(asio::buffer(ignored_),
                            [self = shared_from_this()](error_code error, std::size_t bytes) {
                                self->watching_ = false;
                                self->watched(error, bytes);
                            });
}

void ServerConnection::watched(error_code error, std::size_t bytes) {
    if (state_ == State::Closed)
        return;
    ignoredBytes_ += bytes;
    if (isEngaged() && (error || ignoredBytes_ > MaxIgnored))
        leave();
    else if (error)
        close();
    else
        watch();
}

// Sending

void ServerConnection::sendPending() {
    if (state_ != State::Answering || isSending_)
        return;
    sent_ = 0;
    switch (buffer_->take(sending_)) {
    case ReplyBuffer::Found::Bytes:
        sendSome();
        break;
    case ReplyBuffer::Found::NothingYet:
        limit(replyEnd_);
        break;
    case ReplyBuffer::Found::End:
        linger();
        break;
    case ReplyBuffer::Found::Broken:
        reset();
        break;
    }
}

void ServerConnection::sendSome() {
    isSending_ = true;
    limit(std::min(replyEnd_, Clock::now() + parts_.options.patience));
    socket_.async_write_some(asio::buffer(sending_) + sent_,
                             [self = shared_from_this()](error_code error, std::size_t bytes) {
                                 self->isSending_ = false;
                                 self->sent_ += bytes;
                                 if (self->state_ != State::Answering)
                                     return;
                                 if (error)
                                     self->leave();
                                 else if (self->sent_ < self->sending_.size())
                                     self->sendSome();
                                 else
                                     self->sendPending();
                             });
}

/// Closing with unread bytes would reset the connection, and the client might lose the end of
/// its reply.
void ServerConnection::linger() {
    state_ = State::Lingering;
    sending_ = {};
    if (!running_)
        releaseMemory();
    limit(Clock::now() + LingerTime);
    error_code error;
    socket_.shutdown(tcp::socket::shutdown_send, error);
    if (error)
        close();
    else
        watch();
}

// Time

void ServerConnection::limit(Clock::time_point deadline) {
    deadline_.set(deadline, shared_from_this());
}

void ServerConnection::timeIsUp() {
    if (state_ == State::Reading)
        tell(Refusal::TooSlow);
    if (state_ != State::Answering)
        close();
    else
        abandon(Clock::now() >= replyEnd_ ? "the time for its reply is up"
                                          : "it does not take its reply");
}

// Closing

void ServerConnection::giveWay() {
    if (state_ == State::Reading)
        tell(Refusal::NoRoom);
    close();
}

void ServerConnection::dropUnread() {
    if (state_ == State::Reading)
        close();
}

/// The client has left before it had its reply.
void ServerConnection::leave() {
    if (state_ == State::Queued)
        tell(Refusal::Gone);
    abandon("connection reset");
}

void ServerConnection::abandon(const std::string& why) {
    if (state_ == State::Queued)
        parts_.admission.withdraw(*this);
    if (buffer_)
        buffer_->close(why);
    reset();
    gone_.request_stop();
}

/// Closes so that the client cannot take what it has for a whole reply.
void ServerConnection::reset() {
    error_code ignored;
    socket_.set_option(tcp::socket::linger(true, 0), ignored);
    close();
}

void ServerConnection::close() {
    if (std::exchange(state_, State::Closed) == State::Closed)
        return;
    const auto self = shared_from_this(); // it may be the table's
    error_code ignored;
    socket_.close(ignored);
    deadline_.cancel();
    if (!running_)
        charge_.keep(0); // operations that still end need the buffers
    parts_.connections.remove(*this);
    parts_.closed();
}

} // namespace quillet::rds
