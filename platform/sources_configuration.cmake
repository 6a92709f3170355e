# zarn::type, zarn::object, zarn::configuration
target_sources(zarn_platform PRIVATE
  src/type/binding.cpp)

zarn_verify_headers(zarn_platform "${CMAKE_CURRENT_SOURCE_DIR}/include"
  include/zarn/type/binding.h
  include/zarn/type/flags.h
  include/zarn/type/hash.h)
