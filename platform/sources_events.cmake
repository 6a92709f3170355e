# zarn::asio, chrono, meta, onvif
target_sources(zarn_platform PRIVATE
  src/asio/global_context.cpp
  src/chrono/duration/iso8601.cpp
  src/chrono/iso8601.cpp
  src/chrono/reader.cpp
  src/meta/box.cpp
  src/meta/data/classification/confidence.cpp
  src/meta/data/classification/name.cpp
  src/meta/data/container.cpp
  src/meta/data/event.cpp
  src/meta/data/object.cpp
  src/meta/data/sample_meta.cpp
  src/meta/meta.cpp
  src/meta/point.cpp
  src/onvif/events/handler.cpp
  src/onvif/events/registration.cpp
  src/onvif/events/subscription_gauge.cpp)

zarn_verify_headers(zarn_platform "${CMAKE_CURRENT_SOURCE_DIR}/include"
  include/zarn/asio/global_context.h
  include/zarn/chrono/add.h
  include/zarn/chrono/back_off.h
  include/zarn/chrono/duration/iso8601.h
  include/zarn/chrono/error.h
  include/zarn/chrono/iso8601.h
  include/zarn/meta/box.h
  include/zarn/meta/color.h
  include/zarn/meta/data/channel.h
  include/zarn/meta/data/classification/confidence.h
  include/zarn/meta/data/classification/name.h
  include/zarn/meta/data/container.h
  include/zarn/meta/data/count/value.h
  include/zarn/meta/data/event.h
  include/zarn/meta/data/object.h
  include/zarn/meta/data/object_base.h
  include/zarn/meta/data/sample_meta.h
  include/zarn/meta/data/zone.h
  include/zarn/meta/meta.h
  include/zarn/meta/point.h
  include/zarn/meta/tracked_object.h
  include/zarn/object/container/typed_view.h
  include/zarn/onvif/events/handler.h
  include/zarn/onvif/events/subscription_gauge.h)
