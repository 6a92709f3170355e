#pragma once

#include <zarn/container/buffer.h>
#include <zarn/protocol/network/http/response/status.h>
#include <zarn/web/response/pending.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace zarn::host::web {

/// A complete response, before it is put into the form of a connection.
struct Reply {
    using Status = protocol::network::http::response::Status;

    Status status = Status::Ok;

    /// Header fields, name to value.
    std::map<std::string, std::string> fields;

    /// The chunks of the body, in order.
    std::vector<std::shared_ptr<container::Buffer>> body;
};

/// A reply with a line of plain text as its body.
Reply MakeTextReply(Reply::Status status, std::string text, std::map<std::string, std::string> fields = {});

/// The reply as the answer of a pending response that is complete.
zarn::web::response::Pending::Data ToData(Reply reply);

/// A line of plain text as a pending response that is complete at once.
std::shared_ptr<zarn::web::response::Pending> MakeTextResponse(Reply::Status status, std::string text,
                                                               std::map<std::string, std::string> fields = {});

} // namespace zarn::host::web
