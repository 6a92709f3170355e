#pragma once

#include "soap_fault.h"

/// Defines the override of an operation that this device does not serve. A service lists these once and expands the
/// list in its class: since the bindings declare every operation pure virtual, the compiler proves that each is either
/// served or listed.
///
/// Operation          name in the binding
/// Request, Response  its message types there
#define ZARN_UNSERVED_AS(Operation, Request, Response)                                                                 \
    int Operation(Request*, Response&) override { return NotSupported(soap); }

/// The same for an operation whose message types bear its own name, as most do.
/// prefix  namespace prefix of the service
#define ZARN_UNSERVED(prefix, Operation)                                                                               \
    ZARN_UNSERVED_AS(Operation, _##prefix##__##Operation, _##prefix##__##Operation##Response)
