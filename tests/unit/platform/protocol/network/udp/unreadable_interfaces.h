#pragma once

namespace zarn::test {

/// What there is too little of.
enum class Lack { Nothing, Descriptors, Memory };

/// While it lives, this process cannot read the network interfaces of its machine.
class UnreadableInterfaces {
public:
    explicit UnreadableInterfaces(Lack lack);
    ~UnreadableInterfaces();
    UnreadableInterfaces(UnreadableInterfaces const&) = delete;
    UnreadableInterfaces& operator=(UnreadableInterfaces const&) = delete;
};

} // namespace zarn::test
