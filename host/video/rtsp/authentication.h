#pragma once

#include "host/video/handle.h"
#include "host/video/rtsp/guess_limit.h"

#include <gst/rtsp-server/rtsp-server.h>

#include <memory>
#include <string>

namespace zarn::host::video::rtsp {

/// Makes the check of RTSP requests: digest only, user `admin`, realm zarn::authentication::Realm.
/// ha1     32 lower-case hexadecimal digits; with anything else nobody gets in
/// guesses counts wrong answers; an address that has given too many is refused
/// Throws std::runtime_error when the system cannot hand the hash to GStreamer. Source: RFC 2326, RFC 2617.
ObjectHandle<GstRTSPAuth> MakeAuthentication(std::string const& ha1, std::shared_ptr<GuessLimit> guesses);

} // namespace zarn::host::video::rtsp
