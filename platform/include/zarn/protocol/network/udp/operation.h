#pragma once

namespace zarn::protocol::network::udp {

/// What a receiver does after its callback.
enum class Operation {
    Continue = 0, ///< go on receiving
    Stop = 1,     ///< receive no more; the port stays bound until the receiver is destroyed
};

} // namespace zarn::protocol::network::udp
