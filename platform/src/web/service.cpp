#include <zarn/web/service.h>

#include <algorithm>
#include <array>
#include <utility>

namespace zarn::web {

namespace {

using protocol::network::http::response::Status;

struct Operation {
    Service::Method method;
    Service::Response (Service::*process)(std::shared_ptr<Request>);
};

constexpr std::array Operations{
    Operation{Service::Method::Get, &Service::Get},         Operation{Service::Method::Put, &Service::Put},
    Operation{Service::Method::Post, &Service::Post},       Operation{Service::Method::Head, &Service::Head},
    Operation{Service::Method::Trace, &Service::Trace},     Operation{Service::Method::Delete, &Service::Delete},
    Operation{Service::Method::Options, &Service::Options}, Operation{Service::Method::Connect, &Service::Connect},
};

} // namespace

Service::Service(std::vector<Method> const& allowed) : allow(protocol::network::http::MakeAllow(allowed)) {}

Service::~Service() = default;

std::string Service::GetSchema() const { return "{}"; }

Service::Response Service::Process(std::shared_ptr<Request> request) {
    auto const* operation = std::ranges::find(Operations, request->GetMethod(), &Operation::method);
    if (operation == Operations.end()) return NotAllowed();
    return (this->*operation->process)(std::move(request));
}

// By value, for the services that keep the request beyond the call.
// NOLINTBEGIN(performance-unnecessary-value-param)
Service::Response Service::Get(std::shared_ptr<Request> /*request*/) { return NotAllowed(); }

Service::Response Service::Put(std::shared_ptr<Request> /*request*/) { return NotAllowed(); }

Service::Response Service::Post(std::shared_ptr<Request> /*request*/) { return NotAllowed(); }

Service::Response Service::Head(std::shared_ptr<Request> /*request*/) { return NotAllowed(); }

Service::Response Service::Trace(std::shared_ptr<Request> /*request*/) { return NotAllowed(); }

Service::Response Service::Delete(std::shared_ptr<Request> /*request*/) { return NotAllowed(); }

Service::Response Service::Options(std::shared_ptr<Request> /*request*/) {
    return response::MakeComplete(Status::NoContent, {{"Allow", allow}});
}

Service::Response Service::Connect(std::shared_ptr<Request> /*request*/) { return NotAllowed(); }

// NOLINTEND(performance-unnecessary-value-param)

Service::Response Service::NotAllowed() const {
    return response::MakeComplete(Status::MethodNotAllowed, {{"Allow", allow}});
}

} // namespace zarn::web
