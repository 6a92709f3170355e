#include "host/video/rtsp/authentication.h"

#include "host/video/rtsp/gobject.h"
#include "host/video/rtsp/media_factory.h"

#include <zarn/authentication/realm.h>
#include <zarn/io/unique_descriptor.h>

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <string_view>
#include <system_error>
#include <utility>

namespace zarn::host::video::rtsp {
namespace {

/// A file in memory that only this process can open: GStreamer reads hashes from files only, and they must leave no
/// trace.
class MemoryFile {
public:
    explicit MemoryFile(std::string const& content) : descriptor(memfd_create("rtsp", MFD_CLOEXEC)) {
        if (!descriptor ||
            write(descriptor.Get(), content.data(), content.size()) != static_cast<ssize_t>(content.size())) {
            throw std::system_error(errno, std::generic_category(), "the RTSP server cannot store its credentials");
        }
    }

    std::string GetPath() const { return "/proc/self/fd/" + std::to_string(descriptor.Get()); }

private:
    io::UniqueDescriptor descriptor;
};

void OverrideAuthenticate(GstRTSPAuthClass& table);

using Authentication = Derived<GstRTSPAuth, GstRTSPAuthClass, std::shared_ptr<FailedLogins>, OverrideAuthenticate>;

bool HasCredentials(GstRTSPContext const* context) {
    gchar* credentials = nullptr;
    return gst_rtsp_message_get_header(context->request, GST_RTSP_HDR_AUTHORIZATION, &credentials, 0) == GST_RTSP_OK;
}

gboolean Authenticate(GstRTSPAuth* authentication, GstRTSPContext* context) {
    auto const& base = Authentication::GetBase();
    if (!HasCredentials(context)) return base.authenticate(authentication, context);
    auto& failedLogins = *Authentication::GetValue(authentication);
    auto const peer = GetPeer(context->conn);
    if (failedLogins.GetWait(peer)) return FALSE;
    auto const isKnown = base.authenticate(authentication, context);
    if (isKnown == FALSE || context->token == nullptr) failedLogins.Count(peer);
    return isKnown;
}

void OverrideAuthenticate(GstRTSPAuthClass& table) { table.authenticate = Authenticate; }

bool IsHash(std::string const& text) {
    constexpr std::string_view Digits = "0123456789abcdef";
    return text.size() == 32 && text.find_first_not_of(Digits) == std::string::npos;
}

} // namespace

boost::asio::ip::address GetPeer(GstRTSPConnection const* connection) {
    auto const* const text = gst_rtsp_connection_get_ip(connection);
    boost::system::error_code ignored;
    return text == nullptr ? boost::asio::ip::address() : boost::asio::ip::make_address(text, ignored);
}

ObjectHandle<GstRTSPAuth> MakeAuthentication(std::string const& ha1, std::shared_ptr<FailedLogins> failedLogins) {
    auto authentication = Authentication::Make(GST_TYPE_RTSP_AUTH, "ZarnRtspAuthentication", std::move(failedLogins));
    gst_rtsp_auth_set_supported_methods(authentication.get(), GST_RTSP_AUTH_DIGEST);
    gst_rtsp_auth_set_realm(authentication.get(), zarn::authentication::Realm);
    if (!IsHash(ha1)) return authentication;
    MemoryFile const file(std::string("admin:") + zarn::authentication::Realm + ":" + ha1 + "\n");
    auto* token = gst_rtsp_token_new(GST_RTSP_TOKEN_MEDIA_FACTORY_ROLE, G_TYPE_STRING, AdminRole, nullptr);
    gst_rtsp_auth_parse_htdigest(authentication.get(), file.GetPath().c_str(), token);
    gst_rtsp_token_unref(token);
    return authentication;
}

} // namespace zarn::host::video::rtsp
