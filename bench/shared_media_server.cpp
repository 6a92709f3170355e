// shared_media_server FILE [CHANNELS]: GStreamer's own RTSP server with media that all viewers of a channel share, for
// comparison. Serves FILE, H.264 in any container, at /channels/1 to /channels/CHANNELS (default 1) until it ends.
// Prints its port.

#include <gst/rtsp-server/rtsp-server.h>

#include <cstdlib>
#include <iostream>
#include <string>

int main(int arguments, char** argument) {
    if (arguments < 2 || arguments > 3) {
        std::cerr << "usage: shared_media_server FILE [CHANNELS]\n";
        return 2;
    }
    gst_init(nullptr, nullptr);
    auto* const server = gst_rtsp_server_new();
    gst_rtsp_server_set_address(server, "127.0.0.1");
    gst_rtsp_server_set_service(server, "0"); // a free port
    auto* const mounts = gst_rtsp_server_get_mount_points(server);
    auto const launch = "( filesrc location=\"" + std::string(argument[1]) +
                        "\" ! parsebin ! h264parse config-interval=-1 ! rtph264pay name=pay0 pt=96 )";
    int const channels = arguments == 3 ? std::atoi(argument[2]) : 1;
    for (int i = 1; i <= channels; ++i) {
        auto* const factory = gst_rtsp_media_factory_new();
        gst_rtsp_media_factory_set_launch(factory, launch.c_str());
        gst_rtsp_media_factory_set_shared(factory, TRUE);
        gst_rtsp_mount_points_add_factory(mounts, ("/channels/" + std::to_string(i)).c_str(), factory);
    }
    g_object_unref(mounts);
    if (gst_rtsp_server_attach(server, nullptr) == 0) {
        std::cerr << "shared_media_server: cannot listen\n";
        return 1;
    }
    std::cout << gst_rtsp_server_get_bound_port(server) << std::endl;
    g_main_loop_run(g_main_loop_new(nullptr, FALSE));
}
