#pragma once

#include <zarn/meta/meta.h>

struct soap;
class tt__Frame;

namespace zarn::onvif::meta {

/// A metadata frame as ONVIF tells it, allocated in the context.
///
/// Places are in the normalised coordinates of ONVIF: x from -1 at the left to 1 at the right edge, y from -1 at the
/// bottom to 1 at the top. What lies beyond the picture is moved to its edge. Classes that ONVIF has a word for bear it
/// ("person" is Human), others keep the host's. Colours are RGB.
/// An object for which there is no memory is left out, a member null; without any memory the frame itself is null.
/// Thread: any, as far as the context allows. Source: ONVIF Analytics Service Specification, 5.1 Scene description.
tt__Frame* Convert(soap* soap, zarn::meta::Meta const& frame);

} // namespace zarn::onvif::meta
