#include "host/video/rtsp/authentication.h"

#include "host/video/rtsp/media_factory.h"

#include <zarn/authentication/realm.h>

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <string_view>
#include <system_error>

namespace zarn::host::video::rtsp {
namespace {

/// A file in memory that only this process can find: GStreamer reads hashes from files only, and they are to leave no
/// trace.
class MemoryFile {
public:
    explicit MemoryFile(std::string const& content) : descriptor(memfd_create("rtsp", MFD_CLOEXEC)) {
        if (descriptor < 0 ||
            write(descriptor, content.data(), content.size()) != static_cast<ssize_t>(content.size())) {
            auto const error = errno;
            Close();
            throw std::system_error(error, std::generic_category(), "the RTSP server cannot store its credentials");
        }
    }

    ~MemoryFile() { Close(); }

    MemoryFile(MemoryFile const&) = delete;
    MemoryFile& operator=(MemoryFile const&) = delete;

    std::string GetPath() const { return "/proc/self/fd/" + std::to_string(descriptor); }

private:
    void Close() const {
        if (descriptor >= 0) close(descriptor);
    }

    int descriptor;
};

bool IsHash(std::string const& text) {
    constexpr std::string_view Digits = "0123456789abcdef";
    return text.size() == 32 && text.find_first_not_of(Digits) == std::string::npos;
}

} // namespace

ObjectHandle<GstRTSPAuth> MakeAuthentication(std::string const& ha1) {
    ObjectHandle<GstRTSPAuth> authentication(gst_rtsp_auth_new());
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
