#include "host/video/rtsp/description.h"

#include "host/video/rtsp/stream_path.h"

#include <sstream>

namespace zarn::host::video::rtsp {

std::string WriteDescription(Tracks const& tracks, std::uint64_t session, std::string const& address) {
    std::ostringstream text;
    text << "v=0\r\no=- " << session << " 1 IN IP4 " << address
         << "\r\ns=zarn-host\r\nt=0 0\r\na=type:broadcast\r\na=control:*\r\na=range:npt=now-\r\n";
    for (std::size_t track = 0; track < tracks.size(); ++track) {
        auto const& format = *tracks[track];
        text << "m=" << format.media << " 0 RTP/AVP " << unsigned{format.payloadType} << "\r\nc=IN IP4 0.0.0.0\r\n";
        for (auto const& attribute : format.attributes) text << "a=" << attribute << "\r\n";
        text << "a=control:" << MakeTrackName(track) << "\r\na=ts-refclk:local\r\na=mediaclk:sender\r\n";
    }
    return text.str();
}

} // namespace zarn::host::video::rtsp
