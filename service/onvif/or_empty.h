#pragma once

namespace zarn::service::onvif {

/// The request of an operation. An element with xsi:nil="true" reaches its operation as a null pointer, from any client
/// that likes; it asks for what an empty element asks for.
template <class Request>
Request const& OrEmpty(Request const* request) {
    static Request const empty;
    return request ? *request : empty;
}

} // namespace zarn::service::onvif
