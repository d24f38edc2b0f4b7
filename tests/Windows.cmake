# The tests of the Windows build, run under Wine. GoogleTest is cross-compiled from Debian's sources.
set(gtest_disable_pthreads ON CACHE INTERNAL "")
set(INSTALL_GTEST OFF CACHE INTERNAL "")
add_subdirectory(/usr/src/googletest googletest EXCLUDE_FROM_ALL)

# A test program of Windows alone: windows_test(NAME SOURCES … LIBRARIES …). It runs in a
# single-threaded apartment.
function(windows_test name)
  cmake_parse_arguments(TEST "" "" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(${name} ${TEST_SOURCES})
  target_link_libraries(${name} PRIVATE ${TEST_LIBRARIES} kestrelon_test_main GTest::gmock)
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES TIMEOUT 300)
endfunction()

# Of every desktop: run with plain scripted objects, and with such as are led through COM.
function(kestrelon_test name)
  cmake_parse_arguments(TEST "" "" "SOURCES;LINUX_SOURCES;LIBRARIES" ${ARGN})
  windows_test(${name} SOURCES ${TEST_SOURCES} LIBRARIES ${TEST_LIBRARIES})
  add_test(NAME ${name}_through_com COMMAND ${name} --through-com)
  set_tests_properties(${name}_through_com PROPERTIES TIMEOUT 300)
endfunction()
