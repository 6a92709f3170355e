#include "host/video/payloader.h"

#include <gst/sdp/sdp.h>

#include <algorithm>
#include <cstring>
#include <span>
#include <stdexcept>
#include <string>
#include <utility>

namespace zarn::host::video {
namespace {

constexpr std::size_t HeaderSize = 12;

using Bytes = std::span<std::byte const>;

/// The memory of an access unit, readable as long as this lives, and copies of the few payloads that are not parts of
/// it.
class UnitMemory {
public:
    explicit UnitMemory(GstBuffer* buffer) : buffer(gst_buffer_ref(buffer)) {
        isMapped = gst_buffer_map(buffer, &map, GST_MAP_READ) != FALSE;
    }

    ~UnitMemory() {
        if (isMapped) gst_buffer_unmap(buffer.get(), &map);
    }

    UnitMemory(UnitMemory const&) = delete;
    UnitMemory& operator=(UnitMemory const&) = delete;

    bool Holds(Bytes part) const {
        auto const* const begin = reinterpret_cast<std::byte const*>(map.data);
        return isMapped && part.data() >= begin && part.data() + part.size() <= begin + map.size;
    }

    Bytes Copy(Bytes part) {
        auto& copy = copies.emplace_back(std::make_unique<std::byte[]>(part.size()));
        std::memcpy(copy.get(), part.data(), part.size());
        return {copy.get(), part.size()};
    }

private:
    MiniHandle<GstBuffer> buffer;
    GstMapInfo map{};
    bool isMapped = false;
    std::vector<std::unique_ptr<std::byte[]>> copies;
};

/// The bytes of one memory of a packet.
class MappedMemory {
public:
    explicit MappedMemory(GstMemory* memory) : memory(memory) {
        isMapped = gst_memory_map(memory, &map, GST_MAP_READ) != FALSE;
    }

    ~MappedMemory() {
        if (isMapped) gst_memory_unmap(memory, &map);
    }

    MappedMemory(MappedMemory const&) = delete;
    MappedMemory& operator=(MappedMemory const&) = delete;

    Bytes Get() const { return isMapped ? Bytes(reinterpret_cast<std::byte const*>(map.data), map.size) : Bytes(); }

private:
    GstMemory* memory;
    GstMapInfo map{};
    bool isMapped = false;
};

/// A payload that is copied as a whole.
bool ReadCopied(GstBuffer* made, UnitMemory& memory, rtp::Packet& packet) {
    auto const size = gst_buffer_get_size(made) - HeaderSize;
    std::vector<std::byte> bytes(size);
    if (gst_buffer_extract(made, HeaderSize, bytes.data(), size) != size) return false;
    auto const copy = memory.Copy(bytes);
    packet.prefixSize = 0;
    packet.body = copy.data();
    packet.bodySize = static_cast<std::uint32_t>(copy.size());
    return true;
}

/// Adds bytes to a packet's prefix; false when they do not fit.
bool AddPrefix(rtp::Packet& packet, Bytes bytes) {
    if (packet.prefixSize + bytes.size() > packet.prefix.size()) return false;
    std::ranges::copy(bytes, packet.prefix.data() + packet.prefixSize);
    packet.prefixSize = static_cast<std::uint8_t>(packet.prefixSize + bytes.size());
    return true;
}

/// Reads a packet that the payloader made: header, perhaps a prefix, and at the end a part of the access unit. Others,
/// which are few, are copied.
bool ReadPacket(GstBuffer* made, UnitMemory& memory, rtp::Packet& packet) {
    if (gst_buffer_get_size(made) <= HeaderSize) return false;
    packet.marker = GST_BUFFER_FLAG_IS_SET(made, GST_BUFFER_FLAG_MARKER);
    auto const count = gst_buffer_n_memory(made);
    auto header = HeaderSize;
    for (guint index = 0; index < count; ++index) {
        MappedMemory const part(gst_buffer_peek_memory(made, index));
        auto const bytes = part.Get().subspan(std::min(header, part.Get().size()));
        header -= part.Get().size() - bytes.size();
        if (index + 1 == count && memory.Holds(bytes)) {
            packet.body = bytes.data();
            packet.bodySize = static_cast<std::uint32_t>(bytes.size());
            return true;
        }
        if (!AddPrefix(packet, bytes)) break;
    }
    return ReadCopied(made, memory, packet);
}

struct FreeMedia {
    void operator()(GstSDPMedia* media) const { gst_sdp_media_free(media); }
};

std::shared_ptr<rtp::MediaFormat const> ReadMediaFormat(GstCaps const* caps) {
    GstSDPMedia* made = nullptr;
    gst_sdp_media_new(&made);
    std::unique_ptr<GstSDPMedia, FreeMedia> const media(made);
    if (gst_sdp_media_set_media_from_caps(caps, media.get()) != GST_SDP_OK) return nullptr;
    auto format = std::make_shared<rtp::MediaFormat>();
    for (guint index = 0; index < gst_sdp_media_attributes_len(media.get()); ++index) {
        auto const* const attribute = gst_sdp_media_get_attribute(media.get(), index);
        auto& text = format->attributes.emplace_back(attribute->key);
        if (attribute->value != nullptr && *attribute->value != '\0') text.append(1, ':').append(attribute->value);
    }
    return format;
}

} // namespace

Payloader::Payloader(Codec codec) {
    InitializeGStreamer();
    auto const* const kind = GetTraits(codec).payloader;
    auto* const created = gst_element_factory_make(kind, nullptr);
    if (created == nullptr) throw std::runtime_error(std::string("GStreamer has no element \"") + kind + "\"");
    element.reset(GST_ELEMENT(gst_object_ref_sink(created)));
    g_object_set(element.get(), "pt", rtp::MediaFormat().payloadType, "config-interval", 0, nullptr);
    gst_util_set_object_arg(G_OBJECT(element.get()), "aggregate-mode", "zero-latency");
    source.reset(GST_PAD(gst_object_ref_sink(gst_pad_new("src", GST_PAD_SRC))));
    sink.reset(GST_PAD(gst_object_ref_sink(gst_pad_new("sink", GST_PAD_SINK))));
    gst_pad_set_element_private(sink.get(), this);
    gst_pad_set_chain_function(sink.get(), &Payloader::OnPacket);
    gst_pad_set_event_function(sink.get(), &Payloader::OnEvent);
    ObjectHandle<GstPad> const elementSink(gst_element_get_static_pad(element.get(), "sink"));
    ObjectHandle<GstPad> const elementSource(gst_element_get_static_pad(element.get(), "src"));
    gst_pad_link(source.get(), elementSink.get());
    gst_pad_link(elementSource.get(), sink.get());
    gst_pad_set_active(sink.get(), TRUE);
    gst_pad_set_active(source.get(), TRUE);
    gst_element_set_state(element.get(), GST_STATE_PLAYING);
    gst_pad_push_event(source.get(), gst_event_new_stream_start("zarn"));
}

Payloader::~Payloader() {
    gst_pad_set_active(source.get(), FALSE);
    gst_element_set_state(element.get(), GST_STATE_NULL);
    gst_pad_set_active(sink.get(), FALSE);
}

std::shared_ptr<rtp::Packets const> Payloader::Pay(GstBuffer* unit, GstCaps* caps,
                                                   std::chrono::nanoseconds presentation) {
    SetInput(caps);
    made.clear();
    auto* const buffer = gst_buffer_copy(unit);
    GST_BUFFER_PTS(buffer) = static_cast<GstClockTime>(presentation.count());
    GST_BUFFER_DTS(buffer) = GST_CLOCK_TIME_NONE;
    if (gst_pad_push(source.get(), buffer) != GST_FLOW_OK) return nullptr;
    auto const memory = std::make_shared<UnitMemory>(unit);
    auto packets = std::make_shared<rtp::Packets>();
    packets->list.reserve(made.size());
    for (auto const& each : std::exchange(made, {})) {
        rtp::Packet packet;
        if (!ReadPacket(each.get(), *memory, packet)) continue;
        packets->bytes += packet.GetSize();
        packets->list.push_back(packet);
    }
    packets->format = GetFormat();
    packets->memory = memory;
    return packets->format && !packets->list.empty() ? packets : nullptr;
}

void Payloader::SetInput(GstCaps* caps) {
    if (input && gst_caps_is_equal(input.get(), caps) != FALSE) return;
    bool const isFirst = !input;
    input.reset(gst_caps_ref(caps));
    gst_pad_push_event(source.get(), gst_event_new_caps(caps));
    if (!isFirst) return;
    GstSegment segment;
    gst_segment_init(&segment, GST_FORMAT_TIME);
    gst_pad_push_event(source.get(), gst_event_new_segment(&segment));
}

/// What the payloader says of its packets, which follows the parameter sets in the stream.
std::shared_ptr<rtp::MediaFormat const> Payloader::GetFormat() {
    MiniHandle<GstCaps> present(gst_pad_get_current_caps(sink.get()));
    if (!present) return nullptr;
    if (!output || gst_caps_is_equal(output.get(), present.get()) == FALSE) {
        format = ReadMediaFormat(present.get());
        output = std::move(present);
    }
    return format;
}

GstFlowReturn Payloader::OnPacket(GstPad* pad, GstObject*, GstBuffer* packet) {
    static_cast<Payloader*>(gst_pad_get_element_private(pad))->made.emplace_back(packet);
    return GST_FLOW_OK;
}

gboolean Payloader::OnEvent(GstPad*, GstObject*, GstEvent* event) {
    gst_event_unref(event);
    return TRUE;
}

} // namespace zarn::host::video
