#pragma once

#include "host/video/handle.h"

#include <gst/rtsp-server/rtsp-server.h>

#include <string>

namespace zarn::host::video::rtsp {

/// Makes the check of RTSP requests: digest only, user `admin`, realm zarn::authentication::Realm.
/// ha1  32 lower-case hexadecimal digits; with anything else nobody gets in
/// Throws std::runtime_error when the system cannot hand the hash to GStreamer. Source: RFC 2326, RFC 2617.
ObjectHandle<GstRTSPAuth> MakeAuthentication(std::string const& ha1);

} // namespace zarn::host::video::rtsp
