#include "host/video/engine.h"

#include "host/video/channel.h"
#include "host/video/rtsp/server.h"
#include "host/video/still_service.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <set>
#include <stdexcept>
#include <utility>

namespace zarn::host::video {
namespace {

/// A channel and what snapshots remember of it.
struct Entry {
    Entry(ChannelSettings const& settings, std::function<void()> onBreak)
        : channel(settings, std::move(onBreak)), stills(std::make_shared<StillService::Slot>(channel.GetStream())) {}

    Channel channel;
    std::shared_ptr<StillService::Slot> stills;
};

using EntryPtr = std::shared_ptr<Entry>;

/// The channels, in their order and by identifier.
struct Entries {
    std::vector<EntryPtr> order;
    std::map<std::string, EntryPtr, std::less<>> byId;
};

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
    explicit Impl(RtspSettings const& settings) : server(settings.port), port(server.GetPort()) {
        server.SetAuthentication(settings.authenticate, settings.ha1);
    }

    ~Impl() { Stop(); }

    Impl(Impl const&) = delete;
    Impl& operator=(Impl const&) = delete;

    void SetChannels(std::vector<ChannelSettings> const& settings) {
        RefuseDoubles(settings);
        std::scoped_lock const changing(changeMutex);
        if (isStopped) return;
        auto kept = KeepUnchanged(settings);
        End(kept);
        Entries next;
        for (auto const& one : settings) {
            auto const found = kept.find(one.id);
            auto entry = found == kept.end() ? Begin(one) : found->second;
            entry->channel.SetDescribed(one.described);
            next.order.push_back(entry);
            next.byId.emplace(one.id, std::move(entry));
        }
        std::scoped_lock const lock(mutex);
        entries = std::move(next);
    }

    void SetAuthentication(bool authenticate, std::string const& ha1) {
        std::scoped_lock const changing(changeMutex);
        if (!isStopped) server.SetAuthentication(authenticate, ha1);
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
        for (auto const& entry : last.order) entry->channel.Join();
        server.Stop();
    }

private:
    using ById = std::map<std::string, EntryPtr, std::less<>>;

    ById KeepUnchanged(std::vector<ChannelSettings> const& settings) const {
        ById kept;
        for (auto const& one : settings) {
            auto const entry = Find(one.id);
            if (entry && entry->channel.CanGoOnWith(one)) kept.emplace(one.id, entry);
        }
        return kept;
    }

    /// Ends the channels that are not kept, all at the same time.
    void End(ById const& kept) {
        std::vector<std::pair<std::string, EntryPtr>> gone;
        for (auto const& [id, entry] : entries.byId) {
            if (kept.contains(id)) continue;
            entry->channel.Stop();
            gone.emplace_back(id, entry);
        }
        for (auto const& [id, entry] : gone) {
            entry->channel.Join();
            if (entry->channel.HasSource()) server.Unmount(id);
        }
    }

    EntryPtr Begin(ChannelSettings const& settings) {
        auto entry = std::make_shared<Entry>(settings, [this, id = settings.id] { server.Disconnect(id); });
        if (entry->channel.HasSource()) server.Mount(settings.id, entry->channel.GetStream());
        return entry;
    }

    rtsp::Server server;
    std::uint16_t const port;
    StillService stills;
    std::mutex changeMutex; ///< held by what changes the channels, over the waiting; guards isStopped
    bool isStopped = false;
    mutable std::mutex mutex; ///< guards entries; what holds changeMutex may read them without
    Entries entries;
};

Engine::Engine(RtspSettings const& settings) : impl(std::make_unique<Impl>(settings)) {}

Engine::~Engine() = default;

void Engine::SetChannels(std::vector<ChannelSettings> const& channels) { impl->SetChannels(channels); }

void Engine::SetAuthentication(bool authenticate, std::string const& ha1) {
    impl->SetAuthentication(authenticate, ha1);
}

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
