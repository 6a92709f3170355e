#include "run.h"

#include <zarn/logging/level.h>
#include <zarn/logging/logger.h>

#include <boost/asio/io_context.hpp>

#include <exception>
#include <string>

namespace zarn::asio {

namespace {

void Report(std::string_view logger, char const* what) noexcept {
    try {
        logging::Logger(std::string(logger)).Log(logging::Level::Error, "A handler threw: %0%", what);
    } catch (...) { // no memory for the line: the thread matters more
    }
}

} // namespace

void RunUntilStopped(boost::asio::io_context& ioContext, std::string_view logger) noexcept {
    while (!ioContext.stopped()) {
        try {
            ioContext.run();
        } catch (std::exception const& error) {
            Report(logger, error.what());
        } catch (...) {
            Report(logger, "an exception of unknown type");
        }
    }
}

} // namespace zarn::asio
