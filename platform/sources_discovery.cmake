# What the discovery responder stands on: zarn::asio (I/O context), onvif::discovery, protocol (UDP)
target_sources(zarn_platform PRIVATE
  src/asio/io_context.cpp
  src/asio/run.cpp
  src/network/change_notices.cpp
  src/onvif/discovery/endpoint.cpp
  src/onvif/discovery/request.cpp
  src/onvif/discovery/response.cpp
  src/onvif/discovery/scopes.cpp
  src/onvif/discovery/xml.cpp
  src/protocol/network/udp/admission.cpp
  src/protocol/network/udp/membership.cpp
  src/protocol/network/udp/port.cpp
  src/protocol/network/udp/receiver.cpp
  src/protocol/network/udp/sender.cpp
  src/protocol/network/udp/throttle.cpp)

zarn_verify_headers(zarn_platform "${CMAKE_CURRENT_SOURCE_DIR}/include"
  include/zarn/asio/io_context.h
  include/zarn/onvif/discovery/endpoint.h
  include/zarn/onvif/discovery/request.h
  include/zarn/onvif/discovery/response.h
  include/zarn/onvif/discovery/scopes.h
  include/zarn/onvif/settings.h
  include/zarn/protocol/network/udp/admission.h
  include/zarn/protocol/network/udp/operation.h
  include/zarn/protocol/network/udp/receiver.h
  include/zarn/protocol/network/udp/sender.h
  include/zarn/protocol/network/udp/throttle.h)
