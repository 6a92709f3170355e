# What the discovery responder stands on: zarn::asio (I/O context), network (links), onvif::discovery, protocol (UDP)
zarn_verify_headers(zarn_platform "${CMAKE_CURRENT_SOURCE_DIR}/include"
  include/zarn/asio/io_context.h
  include/zarn/network/link.h
  include/zarn/onvif/discovery/endpoint.h
  include/zarn/onvif/discovery/request.h
  include/zarn/onvif/discovery/response.h
  include/zarn/onvif/discovery/scopes.h
  include/zarn/protocol/network/udp/admission.h
  include/zarn/protocol/network/udp/operation.h
  include/zarn/protocol/network/udp/receiver.h
  include/zarn/protocol/network/udp/sender.h
  include/zarn/protocol/network/udp/throttle.h)
