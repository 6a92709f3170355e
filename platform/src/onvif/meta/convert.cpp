#include <zarn/onvif/filled.h>
#include <zarn/onvif/meta/convert.h>

#include <soapH.h>

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

namespace zarn::onvif::meta {

namespace {

constexpr char RgbColorspace[] = "http://www.onvif.org/ver10/colorspace/RGB";

/// The host's name of a class and ONVIF's.
struct ClassName {
    std::string_view host;
    std::string_view onvif;
};

constexpr std::array ClassNames{
    ClassName{"animal", "Animal"},  ClassName{"bicycle", "Bicycle"}, ClassName{"bike", "Bike"},
    ClassName{"face", "HumanFace"}, ClassName{"human", "Human"},     ClassName{"license_plate", "LicensePlate"},
    ClassName{"person", "Human"},   ClassName{"vehicle", "Vehicle"},
};

std::string ConvertClassName(std::string const& name) {
    auto const* const row = std::find_if(ClassNames.begin(), ClassNames.end(), [&](auto& r) { return r.host == name; });
    return row == ClassNames.end() ? name : std::string(row->onvif);
}

float* MakeFloat(soap* soap, double value) {
    return Filled(soap_new_float(soap), [&](float& made) { made = static_cast<float>(value); });
}

double Normalise(double fraction) { return std::clamp(2 * fraction - 1, -1.0, 1.0); }

float* MakeX(soap* soap, zarn::meta::Point const& point) { return MakeFloat(soap, Normalise(point.GetX())); }

float* MakeY(soap* soap, zarn::meta::Point const& point) { return MakeFloat(soap, Normalise(1 - point.GetY())); }

tt__Vector* MakeVector(soap* soap, zarn::meta::Point const& point) {
    return Filled(soap_new_tt__Vector(soap), [&](tt__Vector& vector) {
        vector.x = MakeX(soap, point);
        vector.y = MakeY(soap, point);
    });
}

tt__Rectangle* MakeRectangle(soap* soap, zarn::meta::Box const& box) {
    return Filled(soap_new_tt__Rectangle(soap), [&](tt__Rectangle& rectangle) {
        rectangle.left = MakeX(soap, box.GetTopLeft());
        rectangle.top = MakeY(soap, box.GetTopLeft());
        rectangle.right = MakeX(soap, box.GetBottomRight());
        rectangle.bottom = MakeY(soap, box.GetBottomRight());
    });
}

tt__ShapeDescriptor* MakeShape(soap* soap, zarn::meta::TrackedObject const& object) {
    return Filled(soap_new_tt__ShapeDescriptor(soap), [&](tt__ShapeDescriptor& shape) {
        shape.BoundingBox = MakeRectangle(soap, object.boundingBox);
        shape.CenterOfGravity = MakeVector(soap, object.centerOfGravity);
    });
}

std::string* MakeText(soap* soap, std::string const& text) {
    return Filled(soap_new_std__string(soap), [&](std::string& made) { made = text; });
}

tt__ColorDescriptor* MakeColor(soap* soap, zarn::meta::Color const& color) {
    return Filled(soap_new_tt__ColorDescriptor(soap), [&](tt__ColorDescriptor& descriptor) {
        auto* const made = Filled(soap_new_tt__Color(soap), [&](tt__Color& rgb) {
            rgb.X = color.red;
            rgb.Y = color.green;
            rgb.Z = color.blue;
            rgb.Colorspace = MakeText(soap, RgbColorspace);
        });
        // Numbers without their colour space would be taken for another one's.
        if (!made || !made->Colorspace) return;
        descriptor.ColorCluster.emplace_back();
        descriptor.ColorCluster.back().Color = made;
    });
}

tt__ClassDescriptor* MakeClass(soap* soap, zarn::meta::TrackedObject const& object) {
    return Filled(soap_new_tt__ClassDescriptor(soap), [&](tt__ClassDescriptor& descriptor) {
        for (auto const& candidate : object.classes) {
            Append(descriptor.Type, Filled(soap_new_tt__StringLikelihood(soap), [&](tt__StringLikelihood& made) {
                       made.__item = ConvertClassName(candidate.GetClass());
                       made.Likelihood = MakeFloat(soap, candidate.GetValue());
                   }));
        }
    });
}

tt__Object* MakeObject(soap* soap, zarn::meta::TrackedObject const& object) {
    return Filled(soap_new_tt__Object(soap), [&](tt__Object& made) {
        made.ObjectId = MakeText(soap, std::to_string(object.number));
        made.Appearance = Filled(soap_new_tt__Appearance(soap), [&](tt__Appearance& appearance) {
            appearance.Shape = MakeShape(soap, object);
            if (object.color) appearance.Color = MakeColor(soap, *object.color);
            if (!object.classes.empty()) appearance.Class = MakeClass(soap, object);
        });
    });
}

} // namespace

tt__Frame* Convert(soap* soap, zarn::meta::Meta const& frame) {
    return Filled(soap_new_tt__Frame(soap), [&](tt__Frame& made) {
        made.UtcTime = static_cast<time_t>(frame.GetTime().time_since_epoch().count());
        for (auto const& object : frame.GetObjects()) Append(made.Object, MakeObject(soap, object));
    });
}

} // namespace zarn::onvif::meta
