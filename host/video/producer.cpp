#include "host/video/producer.h"

#include "host/video/clock_overlay.h"
#include "host/video/pipeline.h"
#include "host/video/pipeline_text.h"

#include <gst/app/app.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <thread>

namespace zarn::host::video {
namespace {

/// Where the automatic decoder stops: coded video that is passed on as it is, or raw pictures.
constexpr char WantedCaps[] = "video/x-h264; video/x-h265; video/x-raw";

/// How often a pipeline is asked for its sink while it is still being built.
constexpr std::chrono::milliseconds BuildPoll{20};

constexpr char const* NoVideo = "it holds no video";

/// Pictures of unknown rate, or of one beyond reason, are encoded at the default.
EncoderInput ReadRawCaps(GstCaps const* caps, bool isLive) {
    auto const* structure = gst_caps_get_structure(caps, 0);
    gint width = 0;
    gint height = 0;
    FrameRate rate;
    gst_structure_get_int(structure, "width", &width);
    gst_structure_get_int(structure, "height", &height);
    bool const isKnown =
        gst_structure_get_fraction(structure, "framerate", &rate.numerator, &rate.denominator) != FALSE &&
        rate.denominator > 0 && rate.numerator >= rate.denominator && rate.numerator / rate.denominator <= 60;
    return {static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height), isKnown ? rate : FrameRate(),
            isLive};
}

MiniHandle<GstCaps> GetCaps(GstPad* pad) {
    auto* caps = gst_pad_get_current_caps(pad);
    return MiniHandle<GstCaps>(caps != nullptr ? caps : gst_pad_query_caps(pad, nullptr));
}

/// A buffer's time on the pipeline's clock; may be before its beginning.
std::optional<std::chrono::nanoseconds> ToRunningTime(GstSegment const* segment, GstClockTime time) {
    guint64 running = 0;
    auto const sign = gst_segment_to_running_time_full(segment, GST_FORMAT_TIME, time, &running);
    if (!GST_CLOCK_TIME_IS_VALID(time) || sign == 0) return std::nullopt;
    return std::chrono::nanoseconds(sign * static_cast<std::int64_t>(running));
}

/// As the buffer tells, else as its frame rate does.
std::optional<std::chrono::nanoseconds> GetDuration(GstBuffer const* buffer, GstCaps const* caps) {
    if (GST_BUFFER_DURATION_IS_VALID(buffer)) return std::chrono::nanoseconds(GST_BUFFER_DURATION(buffer));
    FrameRate rate;
    if (gst_structure_get_fraction(gst_caps_get_structure(caps, 0), "framerate", &rate.numerator, &rate.denominator) ==
            FALSE ||
        rate.numerator <= 0 || rate.denominator <= 0) {
        return std::nullopt;
    }
    return std::chrono::nanoseconds(GST_SECOND) * rate.denominator / rate.numerator;
}

/// Texts are set as they are: GStreamer would unquote them.
void SetProperty(GstElement* element, std::string const& name, std::string const& value) {
    auto* const object = G_OBJECT(element);
    auto const* const specification = g_object_class_find_property(G_OBJECT_GET_CLASS(object), name.c_str());
    if (specification != nullptr && G_IS_PARAM_SPEC_STRING(specification)) {
        g_object_set(object, name.c_str(), value.c_str(), nullptr);
    } else {
        gst_util_set_object_arg(object, name.c_str(), value.c_str());
    }
}

gboolean OnSelectStream(GstElement*, guint, GstCaps* caps, gpointer) {
    auto const* media = gst_structure_get_string(gst_caps_get_structure(caps, 0), "media");
    return media != nullptr && std::string_view(media) == "video" ? TRUE : FALSE;
}

} // namespace

/// Builds the pipeline; what depends on the kind of video is built when the source has told it, on a streaming thread.
class Producer::Impl {
public:
    Impl(Source const& source, OpenOptions const& options) : isLive(source.isLive) {
        if (auto* element = pipeline.Add(source.element.c_str())) Open(element, source, options);
        if (!pipeline.GetFailure()) pipeline.Play();
    }

    ~Impl() { pipeline.End(); }

    Impl(Impl const&) = delete;
    Impl& operator=(Impl const&) = delete;

    Result Pull(std::chrono::milliseconds timeout) {
        if (!sink) {
            sink = pipeline.FindStartedSink();
            if (!sink) std::this_thread::sleep_for(std::min(BuildPoll, timeout));
        }
        if (sink) {
            auto const nanoseconds = std::chrono::nanoseconds(timeout).count();
            MiniHandle<GstSample> sample(
                gst_app_sink_try_pull_sample(GST_APP_SINK(sink.get()), static_cast<GstClockTime>(nanoseconds)));
            if (sample) return MakePicture(std::move(sample));
        }
        if (auto failure = pipeline.GetFailure()) return *std::move(failure);
        if (sink && gst_app_sink_is_eos(GST_APP_SINK(sink.get())) != FALSE) return Ended{};
        return Nothing{};
    }

private:
    void Open(GstElement* element, Source const& source, OpenOptions const& options) {
        for (auto const& [name, value] : source.properties) SetProperty(element, name, value);
        if (source.isRemote) return OpenRemote(element, options);
        ObjectHandle<GstPad> const pad(gst_element_get_static_pad(element, "src"));
        if (source.test) {
            Encode(pad.get(), *source.test);
        } else {
            Decode(pad.get());
        }
    }

    void OpenRemote(GstElement* element, OpenOptions const& options) {
        SetProperty(element, "protocols", options.overUdp ? "udp" : "tcp");
        if (!options.user.empty()) {
            SetProperty(element, "user-id", options.user);
            SetProperty(element, "user-pw", options.password);
        }
        g_signal_connect(element, "select-stream", G_CALLBACK(OnSelectStream), nullptr);
        g_signal_connect(element, "pad-added", G_CALLBACK(&Impl::OnPackets), this);
        g_signal_connect(element, "no-more-pads", G_CALLBACK(&Impl::OnNoMorePackets), this);
    }

    /// Encodes the test pictures that come from a pad.
    void Encode(GstPad* pad, TestEncoding const& test) {
        AttachClock(pad);
        if (auto* bin = pipeline.AddText(MakeTestText(test))) Link(pad, bin);
    }

    /// Finds out what comes from a pad.
    void Decode(GstPad* pad) {
        decoder = pipeline.Add("decodebin");
        if (decoder == nullptr) return;
        MiniHandle<GstCaps> const wanted(gst_caps_from_string(WantedCaps));
        g_object_set(decoder, "caps", wanted.get(), "expose-all-streams", FALSE, nullptr);
        g_signal_connect(decoder, "pad-added", G_CALLBACK(&Impl::OnVideo), this);
        g_signal_connect(decoder, "no-more-pads", G_CALLBACK(&Impl::OnNoMoreVideo), this);
        Link(pad, decoder);
    }

    void Link(GstPad* pad, GstElement* element) {
        gst_element_sync_state_with_parent(element);
        ObjectHandle<GstPad> const target(gst_element_get_static_pad(element, "sink"));
        if (!target || GST_PAD_LINK_FAILED(gst_pad_link(pad, target.get())))
            pipeline.Fail({"its video is of no known kind"});
    }

    static void OnPackets(GstElement*, GstPad* pad, gpointer self) {
        auto& impl = *static_cast<Impl*>(self);
        if (impl.decoder == nullptr) impl.Decode(pad);
    }

    static void OnNoMorePackets(GstElement*, gpointer self) {
        auto& impl = *static_cast<Impl*>(self);
        if (impl.decoder == nullptr) impl.pipeline.Fail({NoVideo});
    }

    static void OnVideo(GstElement*, GstPad* pad, gpointer self) {
        auto& impl = *static_cast<Impl*>(self);
        auto const caps = GetCaps(pad);
        if (impl.hasVideo || !caps || gst_caps_is_any(caps.get()) != FALSE || gst_caps_is_empty(caps.get()) != FALSE)
            return;
        std::string_view const type = gst_structure_get_name(gst_caps_get_structure(caps.get(), 0));
        auto const codec = CodecFromMediaType(type);
        if (!codec && type != "video/x-raw") return;
        impl.hasVideo = true;
        auto const text =
            codec ? MakeParserText(*codec) : MakeEncoderText(Codec::H264, ReadRawCaps(caps.get(), impl.isLive));
        if (auto* bin = impl.pipeline.AddText(text)) impl.Link(pad, bin);
    }

    static void OnNoMoreVideo(GstElement*, gpointer self) {
        auto& impl = *static_cast<Impl*>(self);
        if (!impl.hasVideo) impl.pipeline.Fail({NoVideo});
    }

    static Picture MakePicture(MiniHandle<GstSample> sample) {
        auto const* segment = gst_sample_get_segment(sample.get());
        auto* buffer = gst_sample_get_buffer(sample.get());
        SourceTimes const times{ToRunningTime(segment, GST_BUFFER_PTS(buffer)),
                                ToRunningTime(segment, GST_BUFFER_DTS(buffer)),
                                GetDuration(buffer, gst_sample_get_caps(sample.get()))};
        return {std::move(sample), times};
    }

    bool const isLive;
    Pipeline pipeline;
    GstElement* decoder = nullptr; ///< belongs to the pipeline; touched by one streaming thread
    bool hasVideo = false;         ///< touched by one streaming thread
    ObjectHandle<GstElement> sink;
};

Producer::Producer(Source const& source, OpenOptions const& options) : impl(std::make_unique<Impl>(source, options)) {}

Producer::~Producer() = default;

Producer::Result Producer::Pull(std::chrono::milliseconds timeout) { return impl->Pull(timeout); }

} // namespace zarn::host::video
