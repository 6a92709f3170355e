// The parts of Asio and Beast that are no templates, compiled once for every library and program.
#include <boost/asio/impl/src.hpp>
#include <boost/asio/ssl/impl/src.hpp>
#include <boost/beast/src.hpp>
