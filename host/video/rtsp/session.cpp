#include "host/video/rtsp/session.h"

#include "host/video/rtsp/udp_outlet.h"
#include "host/video/rtsp/worker.h"

#include <boost/algorithm/string/predicate.hpp>
#include <boost/asio/steady_timer.hpp>

#include <utility>

namespace zarn::host::video::rtsp {
namespace {

constexpr std::chrono::seconds ReportInterval{4};

} // namespace

Session::Session(Worker& worker, std::shared_ptr<Mount const> mount, std::string id, ConnectionCount::Slot slot)
    : worker(worker),
      mount(std::move(mount)),
      id(std::move(id)),
      slot(std::move(slot)),
      tracks(this->mount->CountTracks()) {}

Session::~Session() { End(); }

std::shared_ptr<Track> Session::MakeTrack(std::size_t index) {
    auto track = std::make_shared<Track>();
    track->hub = &mount->GetHub(index, worker.GetIndex());
    track->hub->Add(*this);
    return track;
}

Track& Session::SetUp(std::size_t track, std::uint8_t channel, Outlet& connection) {
    ForgetPeers();
    udpOutlet.reset();
    outlet = &connection;
    tracks[track] = MakeTrack(track);
    tracks[track]->channel = channel;
    return *tracks[track];
}

Track& Session::SetUp(std::size_t track, boost::asio::ip::address const& peer, Transport const& transport) {
    auto& ports = worker.GetUdpPorts();
    if (!udpOutlet) udpOutlet = std::make_shared<UdpOutlet>(worker, *this);
    ForgetPeers();
    outlet = udpOutlet.get();
    tracks[track] = MakeTrack(track);
    tracks[track]->rtpPeer = {peer, transport.rtpPort};
    tracks[track]->rtcpPeer = {peer, transport.rtcpPort};
    for (auto const& each : tracks) {
        if (each) ports.Expect(each->rtcpPeer, weak_from_this());
    }
    return *tracks[track];
}

void Session::ForgetPeers() {
    if (!udpOutlet) return;
    for (auto const& track : tracks) {
        if (track) worker.GetUdpPorts().Forget(track->rtcpPeer, *this);
    }
}

Response Session::Handle(Request const& request, StreamPath const& path, std::string const& uri) {
    if (path.id != mount->GetId()) return {Status::NotFound};
    bool const isWhole = !path.track || (tracks.size() == 1 && *path.track == 0);
    if (!isWhole) return {Status::OnlyAggregateAllowed};
    if (request.method == "PLAY") return Play(request, uri);
    if (request.method == "PAUSE") return Pause();
    End();
    return {Status::Ok, {{"Session", id}}};
}

Response Session::Play(Request const& request, std::string const& uri) {
    auto const range = request.Find("Range");
    bool const isNpt = range.empty() || boost::istarts_with(range, "npt=");
    if (!isNpt && !boost::istarts_with(range, "clock=") && !boost::istarts_with(range, "smpte"))
        return {Status::BadRequest};
    std::string info;
    for (std::size_t index = 0; index < tracks.size(); ++index) {
        if (!tracks[index]) continue;
        auto& track = *tracks[index];
        auto& stream = track.hub->GetStream();
        if (!isPlaying) {
            auto const recent = track.hub->Join(*this);
            track.queue.Start(recent ? recent->units : AccessUnits(), stream.GetNow());
        }
        auto const time = track.queue.IsEmpty() ? track.queue.Map(stream.GetNow()) : track.queue.GetFirst().time;
        if (!info.empty()) info += ',';
        info += "url=" + uri + "/" + MakeTrackName(index) + ";seq=" + std::to_string(track.sender.GetSequence()) +
                ";rtptime=" + std::to_string(track.sender.ToTimestamp(time, track.clockRate));
    }
    Response response{Status::Ok, {{"RTP-Info", std::move(info)}}};
    if (isNpt) response.fields.emplace_back("Range", "npt=now-");
    for (auto const* name : {"Scale", "Speed"}) {
        if (!request.Find(name).empty()) response.fields.emplace_back(name, "1.000");
    }
    response.fields.emplace_back("Session", id);
    isPlaying = true;
    return response;
}

Response Session::Pause() {
    if (!isPlaying) return {Status::MethodNotValidInThisState};
    isPlaying = false;
    reported = {};
    for (auto const& track : tracks) {
        if (!track) continue;
        track->hub->Leave(*this);
        track->queue.Stop(track->hub->GetStream().GetNow());
    }
    return {Status::Ok, {{"Session", id}}};
}

void Session::Proceed() {
    if (!isPlaying) return;
    Sweep(Clock::now());
    outlet->Flush();
}

void Session::Sweep(Clock::time_point now) {
    if (now - seen > Timeout) {
        if (onExpiry) onExpiry();
        return End();
    }
    if (!isPlaying || now - reported < ReportInterval) return;
    for (auto const& track : tracks) {
        if (!track || track->isEnding || !track->queue.HasClock()) continue;
        reported = now;
        SendReport(*track);
    }
}

void Session::SendReport(Track& track) {
    auto const time = track.queue.Map(track.hub->GetStream().GetNow());
    outlet->SendControl(track, track.sender.MakeReport(std::chrono::system_clock::now(),
                                                       track.sender.ToTimestamp(time, track.clockRate)));
}

void Session::Deliver(std::size_t index, std::span<AccessUnitPtr const> units, bool isAfterLoss) {
    auto& track = *tracks[index];
    if (isAfterLoss) track.queue.Skip();
    for (auto const& unit : units) track.queue.Push(unit);
    outlet->Flush();
}

void Session::EndOfStream() {
    for (auto const& track : tracks) {
        if (!track) continue;
        track->hub->Remove(*this);
        track->isEnding = isPlaying;
        if (isPlaying && track->queue.IsEmpty() && !track->isSending) SayGoodbye(*track);
    }
    auto const timer = std::make_shared<boost::asio::steady_timer>(worker.GetContext(), Farewell);
    timer->async_wait([timer, weak = weak_from_this()](boost::system::error_code error) {
        auto const self = weak.lock();
        if (error || !self) return;
        if (self->onExpiry) self->onExpiry();
        self->End();
    });
}

void Session::OnSent(Track const& sent) {
    for (auto const& track : tracks) {
        if (track.get() == &sent && track->isEnding && track->queue.IsEmpty()) SayGoodbye(*track);
    }
}

void Session::SayGoodbye(Track& track) {
    track.isEnding = false;
    auto const time = track.queue.Map(track.hub->GetStream().GetNow());
    outlet->SendControl(track, track.sender.MakeGoodbye(std::chrono::system_clock::now(),
                                                        track.sender.ToTimestamp(time, track.clockRate)));
}

void Session::End() {
    if (std::exchange(hasEnded, true)) return;
    for (auto const& track : tracks) {
        if (!track) continue;
        track->hub->Remove(*this);
        track->queue.Stop({});
    }
    ForgetPeers();
    isPlaying = false;
    worker.Remove(*this);
}

} // namespace zarn::host::video::rtsp
