// The non-template parts of Asio and Beast, compiled once for all that link zarn::platform.
#include <boost/asio/impl/src.hpp>
#include <boost/asio/ssl/impl/src.hpp>
#include <boost/beast/src.hpp>
