#pragma once

namespace zarn::test {

/// What the encoder and metadata configurations of both media services say of multicast and of their end.
inline constexpr char NoMulticast[] = R"(
    <tt:Multicast>
      <tt:Address><tt:Type>IPv4</tt:Type></tt:Address><tt:Port>0</tt:Port><tt:TTL>0</tt:TTL>
      <tt:AutoStart>false</tt:AutoStart>
    </tt:Multicast>
    <tt:SessionTimeout>PT0S</tt:SessionTimeout>)";

} // namespace zarn::test
