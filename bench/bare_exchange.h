#pragma once

#include "post.h"

#include <memory>
#include <sstream>
#include <string>
#include <utility>

struct soap;

namespace zarn::bench {

/// A request as one HTTP message.
std::string ToText(Request const& request);

/// An exchange in gSOAP alone: a context, the digest plugin and streams. The baseline for the module.
class BareExchange {
public:
    /// request  one HTTP message
    explicit BareExchange(std::string const& request);

    /// The context to construct the answering service with.
    struct soap* GetContext() const noexcept {
        return context.get();
    }

    /// Reads the request up to its operation; false when that fails.
    bool Begin();

    /// Begins, and lets a service of the bindings answer. Returns the response; empty when the exchange failed.
    template <class Service>
    std::string Complete(Service& service) {
        return Begin() && service.dispatch() == 0 ? std::move(output).str() : std::string();
    }

private:
    std::shared_ptr<struct soap> context;
    std::stringstream input;
    std::ostringstream output;
};

} // namespace zarn::bench
