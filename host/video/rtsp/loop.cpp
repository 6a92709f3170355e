#include "host/video/rtsp/loop.h"

#include <future>
#include <utility>

namespace zarn::host::video::rtsp {
namespace {

gboolean CallOnce(gpointer function) {
    (*static_cast<std::function<void()>*>(function))();
    return G_SOURCE_REMOVE;
}

void Delete(gpointer function) { delete static_cast<std::function<void()>*>(function); }

} // namespace

Loop::Loop() : context(g_main_context_new()), loop(g_main_loop_new(context.get(), FALSE)) {
    thread = std::thread([this] {
        g_main_context_push_thread_default(context.get());
        g_main_loop_run(loop.get());
        g_main_context_pop_thread_default(context.get());
    });
}

Loop::~Loop() {
    // Posted, so that a loop whose thread has only just begun ends as well.
    Post([this] { g_main_loop_quit(loop.get()); });
    thread.join();
}

void Loop::Run(std::function<void()> const& function) {
    std::promise<void> done;
    Post([&] {
        function();
        done.set_value();
    });
    done.get_future().wait();
}

void Loop::Post(std::function<void()> function, std::chrono::milliseconds after) {
    auto* source = g_timeout_source_new(static_cast<guint>(after.count()));
    g_source_set_callback(source, CallOnce, new std::function<void()>(std::move(function)), Delete);
    g_source_attach(source, context.get());
    g_source_unref(source);
}

} // namespace zarn::host::video::rtsp
