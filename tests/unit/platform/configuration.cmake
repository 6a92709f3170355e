zarn_add_tests(NAME platform_configuration_tests
  SOURCES
    configuration/concurrency_test.cpp
    configuration/error_test.cpp
    configuration/host_file_test.cpp
    configuration/node/bind_test.cpp
    configuration/node/dynamic_test.cpp
    configuration/node/map_test.cpp
    configuration/node/override_test.cpp
    configuration/node/primitive_test.cpp
    configuration/node/reading_test.cpp
    configuration/node/undescribed_test.cpp
    configuration/node/writing_test.cpp
    configuration/schema/rule_test.cpp
    configuration/schema_test.cpp
    configuration/text_test.cpp
    json/parse_test.cpp
    object/bad_cast_test.cpp
    object/container/const_iterator_test.cpp
    object/object_test.cpp
    object/primitive_test.cpp
    type/binding_test.cpp
    type/flags_test.cpp
    type/hash_test.cpp
  LIBRARIES zarn::platform zarn::test_support
  LABELS unit)
