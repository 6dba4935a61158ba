#pragma once

#include "data/Cursor.h"
#include "data/Error.h"
#include "rds/Call.h"
#include "rds/http/HttpServer.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <map>
#include <stop_token>
#include <string>
#include <vector>

namespace quillet::rds {

/// Where a method delivers its result, at most once. The arguments go out before the result, so
/// a method changes its by-reference arguments first. A method that delivers nothing has no
/// result.
class CallResult {
public:
    virtual ~CallResult() = default;

    /// Streams the remaining rows of a query as a recordset.
    virtual void rows(data::Cursor& cursor) = 0;

    virtual void value(const Variant& result) = 0;

    /// Says for the log what the call did; rows() does so by itself.
    virtual void note(std::string summary) = 0;

    /// Says for the log that the call failed, although its result goes out.
    virtual void failed(const data::Error& error) = 0;

    /// The caller's address and port.
    virtual const std::string& peer() const = 0;

    /// Asked to stop once nobody waits for the result any more.
    virtual std::stop_token gone() const = 0;
};

/// An object whose methods can be called from afar, from several threads at once. It keeps
/// nothing from one call to the next.
class ServerObject {
public:
    using Arguments = std::vector<Variant>;

    struct Method {
        std::string name;
        /// One per argument: whether it is by reference, and so may be returned.
        std::vector<bool> byReference;
        /// Fails by throwing: data::Error and others as an exception of the object, CallError as
        /// it stands.
        std::function<void(Arguments& arguments, CallResult& result)> run;
    };

    virtual ~ServerObject() = default;

    /// Asked once, when the object is added to a server.
    virtual std::vector<Method> methods() = 0;
};

/// What became of one request, for the log.
struct CallRecord {
    std::string peer;
    std::string target;   ///< "object.method", or the request line of what is no call
    std::string method;   ///< as the object spells it, empty for what is no call of a known one
    std::string summary;  ///< for example "12 rows"
    std::string error;    ///< empty if there was none
    std::size_t rows = 0; ///< that were sent
    std::chrono::milliseconds elapsed{0};
    std::size_t bytes = 0; ///< of the reply's body
};

/// The server side of the protocol: finds the object and the method that a request names, runs
/// it and sends what it returns. Use handle() as the handler of an HttpServer.
class CallServer {
public:
    struct Options {
        /// Sends by-reference arguments back with their values; otherwise every argument comes
        /// back Empty, which callers understand as "unchanged".
        bool returnArguments = false;
    };
    using Observer = std::function<void(const CallRecord&)>;

    explicit CallServer(Options options, Observer observer = {});

    /// Makes an object callable. Letter case of ProgIDs and method names does not count.
    /// @param object must outlive the server.
    void add(const std::string& progId, ServerObject& object);

    /// Answers `POST /msadc/msadcs.dll/<ProgID>.<Method>`; another path is 404, another HTTP
    /// method 405. A call that fails before its reply has begun is answered with a whole-call
    /// error: scode::InvalidArgument for a malformed request or an unknown object,
    /// scode::UnknownMethod, or scode::Exception with the number of the data::Error inside. The
    /// first part of a reply is held back, so short replies never break off.
    /// @throws what broke a reply that has begun.
    void handle(const HttpRequest& request, HttpReply& reply) const;

private:
    void answer(const HttpRequest& request, HttpReply& reply, CallRecord& record) const;
    const ServerObject::Method& find(const Call& call) const;

    Options options_;
    Observer observer_;
    /// By ProgID and method name in upper case.
    std::map<std::string, std::map<std::string, ServerObject::Method>> objects_;
};

} // namespace quillet::rds
