#pragma once

#include <zarn/container/buffer.h>
#include <zarn/protocol/network/http/response/status.h>
#include <zarn/web/response/pending.h>

#include <map>
#include <string>

namespace zarn::host::web {

using Status = protocol::network::http::response::Status;

/// A complete response, before a connection gives it its form.
using Reply = zarn::web::response::Pending::Data;

/// A reply with a line of plain text as its body.
Reply MakeTextReply(Status status, std::string text, std::map<std::string, std::string> fields = {});

/// 503: no thread can be started for the request, the load is too high for now.
Reply MakeOverloadReply();

} // namespace zarn::host::web
