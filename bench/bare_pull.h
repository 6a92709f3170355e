#pragma once

#include <cstddef>

namespace zarn::bench {

/// One exchange of PullMessages in gSOAP alone: a context, the digest plugin, streams and the generated binding, whose
/// operation returns one message as the device builds it. It neither waits nor looks for a subscription.
/// Returns the size of the response in bytes, HTTP header included; 0 when the exchange failed.
std::size_t ExchangeBarePull();

} // namespace zarn::bench
