# The tests of the Windows build, run under Wine. GoogleTest is cross-compiled from Debian's sources.
set(gtest_disable_pthreads ON CACHE INTERNAL "")
set(INSTALL_GTEST OFF CACHE INTERNAL "")
add_subdirectory(/usr/src/googletest googletest EXCLUDE_FROM_ALL)

# One test program: windows_test(NAME SOURCES … LIBRARIES …). It runs in a single-threaded apartment.
function(windows_test name)
  cmake_parse_arguments(TEST "" "" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(${name} ${TEST_SOURCES} ${CMAKE_SOURCE_DIR}/tests/platform/windows/Main.cpp)
  target_link_libraries(${name} PRIVATE ${TEST_LIBRARIES} GTest::gmock)
  add_test(NAME ${name} COMMAND ${name})
endfunction()

foreach(folder frontends/activex platform/windows)
  add_subdirectory(${folder})
endforeach()
