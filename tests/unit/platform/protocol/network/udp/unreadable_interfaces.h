#pragma once

namespace zarn::test {

/// The exhausted resource.
enum class Lack { Nothing, Descriptors, Memory };

/// During its lifetime, this process cannot read the machine's network interfaces.
class UnreadableInterfaces {
public:
    explicit UnreadableInterfaces(Lack lack);
    ~UnreadableInterfaces();
    UnreadableInterfaces(UnreadableInterfaces const&) = delete;
    UnreadableInterfaces& operator=(UnreadableInterfaces const&) = delete;
};

} // namespace zarn::test
