#pragma once

#include <gst/gst.h>

#include <memory>

namespace zarn::host::video {

/// Makes GStreamer ready for use in this process; the first call does it. Fatal signals stay the program's own.
/// Throws std::runtime_error when GStreamer cannot be started. Thread: any.
void InitializeGStreamer();

/// Gives back a reference to a GObject or GstObject.
struct ObjectRelease {
    void operator()(void* object) const noexcept { g_object_unref(object); }
};

/// Gives back a reference to one of GStreamer's small reference-counted types.
struct MiniObjectRelease {
    template <class T>
    void operator()(T* object) const noexcept {
        gst_mini_object_unref(GST_MINI_OBJECT_CAST(object));
    }
};

/// An owned reference to a GObject or GstObject, such as GstElement.
template <class T>
using ObjectHandle = std::unique_ptr<T, ObjectRelease>;

/// An owned reference to a GstBuffer, GstCaps, GstSample or GstMessage.
template <class T>
using MiniHandle = std::unique_ptr<T, MiniObjectRelease>;

} // namespace zarn::host::video
