#pragma once

namespace zarn::test {

/// The multicast and session timeout elements in the encoder and metadata configurations of both media services.
inline constexpr char NoMulticast[] = R"(
    <tt:Multicast>
      <tt:Address><tt:Type>IPv4</tt:Type></tt:Address><tt:Port>0</tt:Port><tt:TTL>0</tt:TTL>
      <tt:AutoStart>false</tt:AutoStart>
    </tt:Multicast>
    <tt:SessionTimeout>PT0S</tt:SessionTimeout>)";

} // namespace zarn::test
