#pragma once

namespace zarn::bench {

/// PullMessages that waits up to an hour for up to ten messages.
inline constexpr char PullMessages[] = R"(<PullMessages xmlns="http://www.onvif.org/ver10/events/wsdl">)"
                                       "<Timeout>PT1H</Timeout><MessageLimit>10</MessageLimit></PullMessages>";

inline constexpr char Unsubscribe[] = R"(<Unsubscribe xmlns="http://docs.oasis-open.org/wsn/b-2"/>)";

} // namespace zarn::bench
