#pragma once

#include <string_view>

namespace boost::asio {
class io_context;
}

namespace zarn::asio {

/// Runs the context on this thread until it is stopped. What a handler throws is logged and goes no further.
/// logger  the name to log with
void RunUntilStopped(boost::asio::io_context& ioContext, std::string_view logger) noexcept;

} // namespace zarn::asio
