#pragma once

#include "host/events/status.h"
#include "host/video/engine.h"
#include "host/web/admission.h"

#include <zarn/configuration/node/root.h>

#include <boost/json/value.hpp>

#include <chrono>

namespace zarn::host {

/// The status of the host for people and monitoring, as `GET /api/health` gives it: "status" ("ok" when no channel has
/// failed and a broker that is wanted is there, else "degraded"), "version", "uptime_seconds", "module", "listeners",
/// "events" and "channels". Holds no secrets.
/// Thread: any.
boost::json::value MakeStatus(configuration::node::Root const& configuration, video::Engine const& engine,
                              web::Admission const& admission, events::MqttStatus const& mqtt, bool tls,
                              std::chrono::seconds uptime);

} // namespace zarn::host
