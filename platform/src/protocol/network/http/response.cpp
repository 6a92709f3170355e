#include "protocol/network/http/body.h"
#include "protocol/network/http/message.h"
#include "protocol/network/http/token.h"

#include <zarn/container/buffer.h>
#include <zarn/protocol/network/http/response.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <string_view>
#include <utility>

namespace zarn::protocol::network::http {

namespace {

using response::Status;

/// Source: RFC 9112, 4. The reason phrase is not looked at; it and the space before it may be missing.
Status ReadStatusLine(MessageReader& reader) {
    constexpr std::string_view Version = "HTTP/1.";
    constexpr std::size_t CodeStart = Version.size() + 2;
    constexpr std::size_t CodeEnd = CodeStart + 3;
    auto const line = reader.ReadLine();
    auto const minor = line.substr(0, CodeStart).substr(std::min(line.size(), Version.size()));
    if (!line.starts_with(Version) || (minor != "0 " && minor != "1 ")) {
        throw ParseError(reader.Where() + "a response starts with \"HTTP/1.0 \" or \"HTTP/1.1 \"");
    }
    auto const digits = line.substr(CodeStart, line.substr(CodeStart).find(' '));
    std::uint16_t code = 0;
    auto const result = std::from_chars(digits.data(), digits.data() + digits.size(), code);
    bool const number = result.ec == std::errc() && result.ptr == line.data() + CodeEnd && digits.size() == 3;
    if (!number || code < 100 || code > 599) {
        throw ParseError(reader.Where() + "the status is not a number from 100 to 599");
    }
    return Status{code};
}

bool IsInterim(Status status) { return status < Status::Ok; }

bool HasBody(Status status) { return status != Status::NoContent && status != Status::NotModified; }

std::map<std::string, std::string> Join(FieldList const& list) {
    std::map<std::string, std::string> fields;
    for (auto const& [name, value] : list) {
        auto const same = std::ranges::find_if(
            fields, [&name = name](auto const& field) { return EqualsIgnoringCase(field.first, name); });
        if (same == fields.end())
            fields.emplace(name, value);
        else
            same->second.append(", ").append(value);
    }
    return fields;
}

} // namespace

Response::Response(Status status, std::map<std::string, std::string> fields, std::string body)
    : status(status), fields(std::move(fields)), body(std::move(body)) {}

Response Response::Parse(std::shared_ptr<container::Buffer> const& buffer) {
    if (buffer == nullptr || buffer->GetSize() == 0) throw ParseError("the response is empty");
    MessageReader reader(buffer->ToStringView(), {MaximumLineLength, MaximumHeaderLength, MaximumFields});
    for (;;) {
        reader.StartHeader();
        auto const status = ReadStatusLine(reader);
        auto const list = reader.ReadFields();
        if (IsInterim(status)) continue;
        return {status, Join(list), HasBody(status) ? ReadBody(reader, list) : std::string()};
    }
}

} // namespace zarn::protocol::network::http
