#pragma once

#include "host/video/channel_settings.h"
#include "host/video/rtsp_settings.h"
#include "host/web/limits.h"

#include <zarn/configuration/node/root.h>
#include <zarn/utilities/name/config.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zarn::host {

/// Describes everything that the host's configuration can hold, in the order of the file. To be called once per tree.
void DescribeSettings(configuration::node::Root& root);

/// The certificate and the private key for TLS, paths of PEM files; both empty: no TLS.
struct TlsFiles {
    std::string certificate;
    std::string privateKey;

    bool IsEmpty() const { return certificate.empty(); }

    bool operator==(TlsFiles const&) const = default;
};

/// The product identity (`identity`).
utilities::name::Config ReadIdentity(configuration::node::Root const& root);

/// The bounds of the web server (`settings.limits`).
web::Limits ReadLimits(configuration::node::Root const& root);

/// The bounds of the RTSP server (`settings.limits`).
video::RtspLimits ReadRtspLimits(configuration::node::Root const& root);

/// How many wrong logins an address may try in a minute, on both servers together.
std::size_t ReadFailedLoginsLimit(configuration::node::Root const& root);

/// How long a nonce of a challenge counts.
std::chrono::seconds ReadNonceLife(configuration::node::Root const& root);

/// How many events may wait in all subscriptions together before the log warns.
std::size_t ReadQueuedWarning(configuration::node::Root const& root);

/// `settings.tls`. Throws configuration::Error when only one of the two files is given.
TlsFiles ReadTlsFiles(configuration::node::Root const& root);

/// The channels in their order (`channels`).
std::vector<video::ChannelSettings> ReadChannels(configuration::node::Root const& root);

/// The value of a node that is there by description. Throws object::BadCast when it has another type.
bool ReadBool(configuration::node::Root const& root, std::string_view path);
std::uint16_t ReadPort(configuration::node::Root const& root, std::string_view path);

/// Overrides a value for this run, typed by the node.
/// Throws configuration::Error when there is no such setting or it does not take the text.
void OverrideSetting(configuration::node::Root const& root, std::string const& path, std::string const& text);

/// Paths of the settings that are used outside the functions above.
inline constexpr char const* WebPortPath = "settings.web_port";
inline constexpr char const* RtspPortPath = "settings.rtsp_port";
inline constexpr char const* AuthenticationPath = "settings.authentication.enabled";
inline constexpr char const* NonceSecondsPath = "settings.authentication.nonce_seconds";
inline constexpr char const* OnvifPath = "settings.onvif.enabled";
inline constexpr char const* DiscoveryAnywherePath = "settings.onvif.discovery_anywhere";
inline constexpr char const* QueuedWarningPath = "settings.events.queued_warning";
inline constexpr char const* FailedLoginsPath = "settings.limits.failed_logins_per_minute";

} // namespace zarn::host
