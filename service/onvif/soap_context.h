#pragma once

#include <atomic>
#include <memory>

struct soap;

namespace zarn::service::onvif {

/// Makes the gSOAP context of one request: no xsi:type on output, strings in UTF-8, and bounds on what a request may
/// hold. Its deleter frees everything that was allocated in it.
/// ending  becomes true when exchanges must stop waiting; must outlive the context; null: never
/// Throws std::bad_alloc.
std::shared_ptr<soap> MakeSoapContext(std::atomic<bool> const* ending = nullptr);

/// Gives the memory of a context that holds nothing but zeros back to the system until it is used again: about a half
/// of it, which pays for a context that waits. The context stays as it is. Thread: the one that runs its exchange.
void ReleaseUnusedMemory(soap* soap);

/// Populates the pages that every exchange touches at its end, about twelve, with one system call instead of a page
/// fault for each. To be called when an exchange goes on after ReleaseUnusedMemory. Has no effect on Linux before 5.14.
/// Thread: the one that runs the exchange. Source: madvise(2).
void PopulateMemory(soap* soap);

/// Whether an operation that waits is to answer now, as it would at the end of its time. Thread: any.
bool IsEnding(soap const* soap);

/// Turns the request's header into that of the response: it relates to the request's message and
/// carries nothing else of the client's. A request without a message id, or with one that XML cannot carry, is answered
/// without a header.
/// Source: WS-Addressing 1.0 Core, 3.4.
void AnswerAddressing(soap* soap);

} // namespace zarn::service::onvif
