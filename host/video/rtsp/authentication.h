#pragma once

#include "host/access/failed_logins.h"
#include "host/video/gstreamer.h"

#include <boost/asio/ip/address.hpp>
#include <gst/rtsp-server/rtsp-server.h>

#include <memory>
#include <string>

namespace zarn::host::video::rtsp {

/// The address of a connection's peer; unspecified when GStreamer does not know it.
boost::asio::ip::address GetPeer(GstRTSPConnection const* connection);

/// Makes the check of RTSP requests: digest only, user `admin`, realm zarn::authentication::Realm.
/// ha1           32 lower-case hexadecimal digits; with anything else every login fails
/// failedLogins  counts failed logins; an address with too many is refused
/// Throws std::runtime_error when the system cannot hand the hash to GStreamer. Source: RFC 2326, RFC 2617.
ObjectHandle<GstRTSPAuth> MakeAuthentication(std::string const& ha1, std::shared_ptr<FailedLogins> failedLogins);

} // namespace zarn::host::video::rtsp
