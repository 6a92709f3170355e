#include "host/video/engine.h"

#include "host/video/channel.h"
#include "host/video/log.h"
#include "host/video/rtsp/server.h"
#include "host/video/still_service.h"

#include <chrono>
#include <map>
#include <mutex>
#include <set>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace zarn::host::video {
namespace {

/// A channel and what snapshots remember of it.
struct Entry {
    explicit Entry(ChannelSettings const& settings)
        : channel(settings), stills(std::make_shared<StillService::Slot>(channel.GetStream())) {}

    Channel channel;
    std::shared_ptr<StillService::Slot> stills;
};

using EntryPtr = std::shared_ptr<Entry>;

/// The channels, in their order and by identifier.
struct Entries {
    std::vector<EntryPtr> order;
    std::map<std::string, EntryPtr, std::less<>> byId;

    void Add(std::string const& id, EntryPtr const& entry) {
        order.push_back(entry);
        byId.emplace(id, entry);
    }
};

/// How long is waited for sources to close. One that hangs cannot be ended, only left to itself.
constexpr std::chrono::milliseconds EndTimeout{400};

void RefuseDoubles(std::vector<ChannelSettings> const& channels) {
    std::set<std::string_view> ids;
    for (auto const& channel : channels) {
        if (!ids.insert(channel.id).second)
            throw std::invalid_argument("two channels are called \"" + channel.id + "\"");
    }
}

} // namespace

class Engine::Impl {
public:
    explicit Impl(RtspSettings const& settings)
        : server(std::make_unique<rtsp::Server>(settings.port, settings.failedLogins)), port(server->GetPort()) {
        server->SetLimits(settings.limits);
        server->SetAuthentication(settings.authenticate, settings.ha1);
    }

    ~Impl() { Stop(); }

    Impl(Impl const&) = delete;
    Impl& operator=(Impl const&) = delete;

    void SetChannels(std::vector<ChannelSettings> const& settings) {
        RefuseDoubles(settings);
        std::scoped_lock const changing(changeMutex);
        if (isStopped) return;
        auto next = KeepUnchanged(settings);
        End(next);
        // Replaced in one step, so that a channel which only changes is found all the time. Whatever is
        // thrown on the way: what has ended is not found any more, the rest serves on, and the same call made again
        // begins what is missing.
        try {
            Begin(settings, next);
        } catch (...) {
            Replace(std::move(next));
            throw;
        }
        Replace(std::move(next));
        server->Start();
    }

    void SetAuthentication(bool authenticate, std::string const& ha1) {
        std::scoped_lock const changing(changeMutex);
        if (!isStopped) server->SetAuthentication(authenticate, ha1);
    }

    void SetLimits(ConnectionLimits const& limits) {
        std::scoped_lock const changing(changeMutex);
        if (!isStopped) server->SetLimits(limits);
    }

    std::uint16_t GetPort() const { return port; }

    /// Null when there is no such channel.
    EntryPtr Find(std::string_view id) const {
        std::scoped_lock const lock(mutex);
        auto const found = entries.byId.find(id);
        return found == entries.byId.end() ? nullptr : found->second;
    }

    std::vector<EntryPtr> GetAll() const {
        std::scoped_lock const lock(mutex);
        return entries.order;
    }

    StillService& GetStills() { return stills; }

    void Stop() {
        std::scoped_lock const changing(changeMutex);
        if (isStopped) return;
        isStopped = true;
        Entries last;
        {
            std::scoped_lock const lock(mutex);
            std::swap(last, entries);
        }
        for (auto const& entry : last.order) entry->channel.Stop();
        stills.Stop();
        AwaitEnd(last.order);
        server.reset();
    }

private:
    /// The present channels that go on with the settings.
    Entries KeepUnchanged(std::vector<ChannelSettings> const& settings) const {
        Entries kept;
        for (auto const& one : settings) {
            auto const entry = Find(one.id);
            if (!entry || !entry->channel.CanGoOnWith(one)) continue;
            kept.Add(one.id, entry);
        }
        return kept;
    }

    /// Ends the channels that are not kept, all at the same time.
    void End(Entries const& kept) {
        std::vector<EntryPtr> gone;
        for (auto const& [id, entry] : entries.byId) {
            if (kept.byId.contains(id)) continue;
            entry->channel.Stop();
            gone.push_back(entry);
        }
        AwaitEnd(gone);
        for (auto const& [id, entry] : entries.byId) {
            if (!kept.byId.contains(id) && entry->channel.HasSource()) server->Unmount(id);
        }
    }

    void Replace(Entries next) {
        std::scoped_lock const lock(mutex);
        std::swap(entries, next);
    }

    /// Waits for channels that have been stopped, and sets those aside that do not end in time.
    void AwaitEnd(std::vector<EntryPtr> const& stopped) {
        auto const deadline = std::chrono::steady_clock::now() + EndTimeout;
        std::erase_if(late, [](auto const& entry) { return entry->channel.WaitForEnd({}); });
        for (auto const& entry : stopped) {
            if (entry->channel.WaitForEnd(deadline)) continue;
            entry->channel.Abandon();
            late.push_back(entry);
            Log().Log(logging::Level::Warning, "channel %0%: its source does not close", entry->channel.GetStatus().id);
        }
    }

    /// Begins the channels that are not among the entries, and puts all into the order of the settings, with their
    /// descriptions.
    void Begin(std::vector<ChannelSettings> const& settings, Entries& next) {
        for (auto const& one : settings) {
            if (!next.byId.contains(one.id)) next.Add(one.id, Begin(one));
        }
        next.order.clear();
        for (auto const& one : settings) {
            next.order.push_back(next.byId.at(one.id));
            next.order.back()->channel.SetDescribed(one.described);
        }
    }

    EntryPtr Begin(ChannelSettings const& settings) {
        auto entry = std::make_shared<Entry>(settings);
        if (entry->channel.HasSource()) server->Mount(settings.id, entry->channel.GetStream());
        return entry;
    }

    std::unique_ptr<rtsp::Server> server; ///< null once stopped
    std::uint16_t const port;
    StillService stills;
    std::mutex changeMutex; ///< held by what changes the channels, over the waiting; guards isStopped
    bool isStopped = false;
    std::vector<EntryPtr> late; ///< stopped, but their source hangs; guarded by changeMutex
    mutable std::mutex mutex;   ///< guards entries; what holds changeMutex may read them without
    Entries entries;
};

Engine::Engine(RtspSettings const& settings) try : impl(std::make_unique<Impl>(settings)) {
} catch (std::system_error const& error) {

    throw std::runtime_error(std::string("the video engine cannot be started: ") + error.what());
}

Engine::~Engine() = default;

void Engine::SetChannels(std::vector<ChannelSettings> const& channels) { impl->SetChannels(channels); }

void Engine::SetAuthentication(bool authenticate, std::string const& ha1) {
    impl->SetAuthentication(authenticate, ha1);
}

void Engine::SetLimits(ConnectionLimits const& limits) { impl->SetLimits(limits); }

std::uint16_t Engine::GetPort() const { return impl->GetPort(); }

meta::data::VideoInfo Engine::Describe(std::string_view id) const {
    auto const entry = impl->Find(id);
    return entry ? entry->channel.GetStream()->Describe() : meta::data::VideoInfo();
}

void Engine::RequestSnapshot(std::string_view id, std::function<void(Snapshot)> done) {
    if (auto const entry = impl->Find(id)) {
        impl->GetStills().Request(entry->stills, std::move(done));
    } else {
        done({SnapshotError::NoSuchChannel, "there is no such channel", nullptr});
    }
}

std::vector<ChannelStatus> Engine::GetStatus() const {
    std::vector<ChannelStatus> status;
    for (auto const& entry : impl->GetAll()) status.push_back(entry->channel.GetStatus());
    return status;
}

void Engine::Stop() { impl->Stop(); }

} // namespace zarn::host::video
