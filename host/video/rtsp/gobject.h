#pragma once

#include "host/video/gstreamer.h"

#include <memory>
#include <utility>

namespace zarn::host::video::rtsp {

/// A class derived from a GObject class, whose instances own a value. GObject's way of deriving: an instance begins
/// with that of its base, and a class is a table of functions.
/// BaseClass  the table of Base
/// Override   puts other functions into the table
template <class Base, class BaseClass, class Value, void (*Override)(BaseClass&)>
class Derived {
public:
    /// type  of Base
    /// name  of the derived class, the same at each call
    static ObjectHandle<Base> Make(GType type, char const* name, Value value) {
        static GType const Type = g_type_register_static_simple(type, name, sizeof(BaseClass), InitializeClass,
                                                                sizeof(Instance), nullptr, static_cast<GTypeFlags>(0));
        auto* const instance = static_cast<Instance*>(g_object_new(Type, nullptr));
        instance->value = new Value(std::move(value));
        return ObjectHandle<Base>(&instance->base);
    }

    static Value& GetValue(Base* object) { return *reinterpret_cast<Instance*>(object)->value; }

    /// The functions of the base, for those that replace them.
    static BaseClass const& GetBase() { return *static_cast<BaseClass const*>(baseClass); }

private:
    struct Instance {
        Base base;
        Value* value;
    };

    static void InitializeClass(gpointer table, gpointer) {
        baseClass = g_type_class_peek_parent(table);
        G_OBJECT_CLASS(table)->finalize = [](GObject* object) {
            delete reinterpret_cast<Instance*>(object)->value;
            G_OBJECT_CLASS(baseClass)->finalize(object);
        };
        Override(*static_cast<BaseClass*>(table));
    }

    static inline gpointer baseClass = nullptr;
};

/// Connects a signal to a function, whose last argument points to a std::shared_ptr of its own to `data`.
template <class Data>
void ConnectShared(gpointer object, char const* signal, GCallback function, std::shared_ptr<Data> data) {
    g_signal_connect_data(
        object, signal, function, new std::shared_ptr<Data>(std::move(data)),
        [](gpointer shared, GClosure*) { delete static_cast<std::shared_ptr<Data>*>(shared); },
        static_cast<GConnectFlags>(0));
}

} // namespace zarn::host::video::rtsp
