#pragma once

#include <array>
#include <atomic>
#include <cstddef>

namespace zarn::test {

/// The calls that can be made to fail. The order is that of CallNames.
enum class Call : int {
    None,
    New,
    Malloc,
    Socket,
    Bind,
    Listen,
    Accept,
    Connect,
    SetSocketOption,
    Send,
    Receive,
    EpollCreate,
    EpollControl,
    EventDescriptor,
    TimerDescriptor,
    SignalDescriptor,
    Open,
    MakeTemporary,
    Read,
    Write,
    Sync,
    Rename,
    ChangeMode,
    Close,
    CreateThread,
    Count
};

constexpr std::array<char const*, static_cast<std::size_t>(Call::Count)> CallNames{"None",
                                                                                   "New",
                                                                                   "Malloc",
                                                                                   "Socket",
                                                                                   "Bind",
                                                                                   "Listen",
                                                                                   "Accept",
                                                                                   "Connect",
                                                                                   "SetSocketOption",
                                                                                   "Send",
                                                                                   "Receive",
                                                                                   "EpollCreate",
                                                                                   "EpollControl",
                                                                                   "EventDescriptor",
                                                                                   "TimerDescriptor",
                                                                                   "SignalDescriptor",
                                                                                   "Open",
                                                                                   "MakeTemporary",
                                                                                   "Read",
                                                                                   "Write",
                                                                                   "Sync",
                                                                                   "Rename",
                                                                                   "ChangeMode",
                                                                                   "Close",
                                                                                   "CreateThread"};

/// What a test and the process under it share, in a file that both have mapped: the test can say which call is to fail
/// while the process runs. `left` is set last and counts down: the call that takes it from 1 to 0 fails, and with it
/// `width` - 1 further ones.
struct Control {
    std::atomic<int> call;  ///< a Call; None: nothing fails and nothing is counted
    std::atomic<int> left;  ///< calls up to the one that fails
    std::atomic<int> width; ///< how many fail in a row; 0 counts as 1
    std::atomic<int> error; ///< errno of the failure
    std::atomic<int> made;  ///< calls counted so far
    std::atomic<int> failed;
};

/// Names the file with the Control.
inline constexpr char const* ControlVariable = "ZARN_FAILING_CALLS";

} // namespace zarn::test
