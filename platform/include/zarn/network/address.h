#pragma once

#include <boost/asio/ip/address_v4.hpp>

#include <cstdint>

namespace zarn::network::address::v4 {

/// The address a.b.c.d.
inline boost::asio::ip::address_v4 Make(std::uint8_t a, std::uint8_t b, std::uint8_t c, std::uint8_t d) {
    return boost::asio::ip::address_v4(boost::asio::ip::address_v4::bytes_type{a, b, c, d});
}

} // namespace zarn::network::address::v4
