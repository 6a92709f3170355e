#pragma once

#include <string_view>

namespace zarn::authentication {

/// What tells a digest answer from the other ones of the same challenge. Source: RFC 7616, 3.4.
struct AnswerIdentity {
    std::string_view nonce;
    std::string_view nonceCount;  ///< "nc" as the client wrote it; empty: the answer covers none
    std::string_view clientNonce; ///< "cnonce"; empty: the answer covers none
};

/// Decides whether a right digest answer may be used, so that nobody who has overheard it can use it again. A host that
/// sends its own challenges gives one to its engine. Source: RFC 7616, 5.5.
class ReplayCheck {
public:
    ReplayCheck() = default;
    virtual ~ReplayCheck() = default;
    ReplayCheck(ReplayCheck const&) = delete;
    ReplayCheck& operator=(ReplayCheck const&) = delete;

    /// Called with right answers only, before what they ask for is done. True: it may be done, and the answer is used
    /// up, where it is one that can be. False: its challenge is none of the host's, or too old, or the answer has been
    /// used. Thread: any, several at once.
    virtual bool Take(AnswerIdentity const& answer) = 0;
};

} // namespace zarn::authentication
