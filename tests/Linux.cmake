# The tests of the Linux build.
find_package(GTest REQUIRED)
find_package(Python3 REQUIRED COMPONENTS Interpreter)

function(kestrelon_test name)
  cmake_parse_arguments(TEST "" "" "SOURCES;LINUX_SOURCES;LIBRARIES" ${ARGN})
  add_executable(${name} ${TEST_SOURCES} ${TEST_LINUX_SOURCES})
  target_link_libraries(${name} PRIVATE ${TEST_LIBRARIES} GTest::gmock GTest::gtest_main)
  add_test(NAME ${name} COMMAND ${name})
endfunction()
