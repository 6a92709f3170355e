#pragma once

#include <zarn/protocol/network/http/method.h>
#include <zarn/web/request.h>
#include <zarn/web/response/pending.h>

#include <memory>
#include <string>
#include <vector>

namespace zarn::web {

/// A module that a host hands HTTP requests to. A service overrides the methods that it answers; the others answer a
/// complete 405 with the field Allow, and OPTIONS a complete 204 with it. None of them may wait: a service that needs
/// time returns a pending response. Thread: any number at once.
class Service {
public:
    /// What a service answers.
    using Response = std::shared_ptr<response::Pending>;
    /// An HTTP method.
    using Method = protocol::network::http::Method;

    /// allowed  what the field Allow names, beside OPTIONS; a service of this interface is a SOAP endpoint unless it
    /// says otherwise
    explicit Service(std::vector<Method> const& allowed = {Method::Post});

    virtual ~Service();
    Service(Service const&) = delete;
    Service& operator=(Service const&) = delete;

    /// A JSON text that describes the service; "{}" by default.
    virtual std::string GetSchema() const;

    /// Hands the request to the operation of its method.
    virtual Response Process(std::shared_ptr<Request> request);

    /// Answers GET.
    virtual Response Get(std::shared_ptr<Request> request);
    /// Answers PUT.
    virtual Response Put(std::shared_ptr<Request> request);
    /// Answers POST.
    virtual Response Post(std::shared_ptr<Request> request);
    /// Answers HEAD.
    virtual Response Head(std::shared_ptr<Request> request);
    /// Answers TRACE.
    virtual Response Trace(std::shared_ptr<Request> request);
    /// Answers DELETE.
    virtual Response Delete(std::shared_ptr<Request> request);
    /// Answers OPTIONS.
    virtual Response Options(std::shared_ptr<Request> request);
    /// Answers CONNECT.
    virtual Response Connect(std::shared_ptr<Request> request);

private:
    Response NotAllowed() const;

    std::string allow;
};

} // namespace zarn::web
