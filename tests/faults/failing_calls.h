#pragma once

#include <array>
#include <atomic>
#include <cstddef>

namespace zarn::test {

/// The calls that can be made to fail, in the order of CallNames.
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

/// Shared by a test and the process under test, in a file that both map, so that the test can select the failing call
/// at run time. `left` is set last and counts down: the call that takes it from 1 to 0 fails, as do the next `width` -
/// 1 calls.
struct Control {
    std::atomic<int> call;  ///< a Call; None: no failures, no counting
    std::atomic<int> left;  ///< calls up to and including the first failing one
    std::atomic<int> width; ///< number of consecutive failures; 0 means 1
    std::atomic<int> error; ///< errno of the failure
    std::atomic<int> made;  ///< calls counted so far
    std::atomic<int> failed;
};

/// Names the file with the Control.
inline constexpr char const* ControlVariable = "ZARN_FAILING_CALLS";

} // namespace zarn::test
