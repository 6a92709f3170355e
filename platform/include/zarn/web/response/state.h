#pragma once

namespace zarn::web::response {

/// Whether a pending response is complete.
enum class State {
    Complete = 0, ///< status, fields and body are final; do not ask again
    NotReady = 1, ///< nothing to send yet; ask again
};

} // namespace zarn::web::response
