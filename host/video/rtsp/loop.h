#pragma once

#include <gst/gst.h>

#include <chrono>
#include <functional>
#include <memory>
#include <thread>

namespace zarn::host::video::rtsp {

/// A GLib main loop on a thread of its own.
class Loop {
public:
    Loop();

    /// Ends the loop and waits for its thread; what was posted and has not run is dropped.
    ~Loop();

    Loop(Loop const&) = delete;
    Loop& operator=(Loop const&) = delete;

    /// Runs a function on the loop's thread and waits for it. Thread: any but the loop's own.
    void Run(std::function<void()> const& function);

    /// Runs a function on the loop's thread soon, or after a time; returns at once. Thread: any.
    void Post(std::function<void()> function, std::chrono::milliseconds after = std::chrono::milliseconds(0));

    /// For sources of events.
    GMainContext* GetContext() const { return context.get(); }

private:
    struct Release {
        void operator()(GMainContext* value) const { g_main_context_unref(value); }

        void operator()(GMainLoop* value) const { g_main_loop_unref(value); }
    };

    std::unique_ptr<GMainContext, Release> context;
    std::unique_ptr<GMainLoop, Release> loop;
    std::thread thread;
};

} // namespace zarn::host::video::rtsp
