#include "host/video/gstreamer.h"

#include <stdexcept>
#include <string>

namespace zarn::host::video {

void InitializeGStreamer() {
    static bool const Ready = [] {
        gst_segtrap_set_enabled(FALSE);
        GError* error = nullptr;
        if (gst_init_check(nullptr, nullptr, &error) == FALSE) {
            std::string const reason = error == nullptr ? "no reason given" : error->message;
            g_clear_error(&error);
            throw std::runtime_error("GStreamer does not start: " + reason);
        }
        return true;
    }();
    static_cast<void>(Ready);
}

} // namespace zarn::host::video
