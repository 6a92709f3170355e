#pragma once

#include <httpda.h>
#include <soapH.h>

#include <memory>
#include <string>
#include <utility>

namespace zarn::test {

/// A C++ client generated from the service definitions: a context for proxies with one persistent connection and HTTP
/// digest login on demand.
class GsoapClient {
public:
    explicit GsoapClient(std::string password);
    ~GsoapClient();
    GsoapClient(GsoapClient const&) = delete;
    GsoapClient& operator=(GsoapClient const&) = delete;

    /// Calls an operation and returns gSOAP's status: SOAP_OK, 401 when the password is wrong, or another error.
    /// endpoint  the service's address
    template <class Proxy, class Request, class Response>
    int Call(std::string const& endpoint, int (Proxy::*operation)(Request*, Response&), Request request,
             Response& response) {
        Proxy proxy(GetContext(), endpoint.c_str());
        auto const call = [&] { return (proxy.*operation)(&request, response); };
        PrepareCall();
        int const status = call();
        return status == 401 && LogIn() ? call() : status;
    }

    /// Number of connections opened so far.
    int CountConnections() const { return connections; }

    /// The realm of the login; empty before the first login.
    std::string const& GetRealm() const { return realm; }

    struct soap* GetContext() const {
        return context.get();
    }

private:
    struct Free {
        void operator()(struct soap* context) const;
    };

    static SOAP_SOCKET Connect(struct soap* context, char const* endpoint, char const* host, int port);

    void PrepareCall();

    /// Answers the current challenge; false when it has already been answered.
    bool LogIn();

    std::string password;
    std::string realm;
    int connections = 0;
    http_da_info login{};
    std::unique_ptr<struct soap, Free> context;
    SOAP_SOCKET (*connect)(struct soap*, char const*, char const*, int);
};

} // namespace zarn::test
