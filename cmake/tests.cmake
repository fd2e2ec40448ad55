# glyphward_test(NAME KIND unit|widget|end_to_end|package|web SOURCES ... [LIBRARIES ...])
#
# One GoogleTest executable. Its line "kind name path" in tests/suites.txt is what test.sh reads: the tests touch fixed paths and
# an X server, so they run in the sandbox and not from the build directory.
set(GLYPHWARD_SUITES_FILE ${CMAKE_BINARY_DIR}/tests/suites.txt)
file(WRITE ${GLYPHWARD_SUITES_FILE} "")

function(glyphward_test name)
  cmake_parse_arguments(arg "" "KIND" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/src ${CMAKE_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE ${arg_LIBRARIES} GTest::gmock GTest::gtest_main glyphward_warnings)
  target_precompile_headers(${name} REUSE_FROM test_headers)
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
  file(APPEND ${GLYPHWARD_SUITES_FILE} "${arg_KIND} ${name} ${CMAKE_BINARY_DIR}/tests/${name}\n")
endfunction()
