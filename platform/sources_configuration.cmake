# zarn::type, zarn::object, zarn::configuration
target_sources(zarn_platform PRIVATE
  src/object/bad_cast.cpp
  src/object/object.cpp
  src/type/binding.cpp)

zarn_verify_headers(zarn_platform "${CMAKE_CURRENT_SOURCE_DIR}/include"
  include/zarn/configuration/error.h
  include/zarn/configuration/event.h
  include/zarn/configuration/event/added.h
  include/zarn/configuration/event/changed.h
  include/zarn/configuration/event/removed.h
  include/zarn/configuration/layer.h
  include/zarn/configuration/lock.h
  include/zarn/configuration/node.h
  include/zarn/configuration/node/binding/option.h
  include/zarn/configuration/node/dynamic.h
  include/zarn/configuration/node/map.h
  include/zarn/configuration/node/primitive.h
  include/zarn/configuration/node/root.h
  include/zarn/configuration/node/undescribed.h
  include/zarn/configuration/node/value.h
  include/zarn/configuration/schema.h
  include/zarn/configuration/schema/option.h
  include/zarn/configuration/schema/rule.h
  include/zarn/configuration/text.h
  include/zarn/configuration/unknown.h
  include/zarn/object/bad_cast.h
  include/zarn/object/container/const_iterator.h
  include/zarn/object/object.h
  include/zarn/object/primitive.h
  include/zarn/object/typed.h
  include/zarn/type/binding.h
  include/zarn/type/flags.h
  include/zarn/type/hash.h)
