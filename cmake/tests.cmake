# glyphward_test(NAME KIND unit|widget|end_to_end|package|web|soak SOURCES ... [ALONE ...] [LIBRARIES ...])
#
# Sources are compiled four at a time, which takes half as long. Those behind ALONE are compiled one by one, because
# they have names in common with others.
#
# One GoogleTest executable, a suite. The tests use fixed paths and an X server, so CTest starts each suite in a sandbox
# of its own, with scripts/suite, once for each user that it is for. Its labels are its kind and the user. test.sh
# selects suites by their lines "kind name path" in tests/suites.txt. The target KIND_suites builds all suites of a
# kind.
enable_testing()
set(GLYPHWARD_SUITES_FILE ${CMAKE_BINARY_DIR}/tests/suites.txt)
file(WRITE ${GLYPHWARD_SUITES_FILE} "")
cmake_path(GET CMAKE_BINARY_DIR FILENAME GLYPHWARD_CONFIG)

# The seconds that one run of a suite may take, and the users that it is for. Only the superuser installs packages, and
# the tests of the page start the program for both users themselves.
set(limit_unit 600)
set(users_unit user root)
set(limit_widget 300)
set(users_widget user root)
set(limit_end_to_end 900)
set(users_end_to_end user root)
set(limit_package 300)
set(users_package root)
set(limit_web 300)
set(users_web any)
# These run as long as they are told to (test.sh --seconds), so there is no limit but a day.
set(limit_fuzz 86400)
set(users_fuzz user)
set(limit_soak 86400)
set(users_soak user root)
# CTest starts the longest suites first, so that the last ones are short. It uses these costs until it has measured.
set(cost_unit 1)
set(cost_widget 10)
set(cost_package 20)
set(cost_web 25)
set(cost_end_to_end 30)
set(cost_fuzz 5)
set(cost_soak 70)

function(glyphward_test name)
  cmake_parse_arguments(arg "" "KIND" "SOURCES;ALONE;LIBRARIES" ${ARGN})
  add_executable(${name} ${arg_SOURCES} ${arg_ALONE})
  set_source_files_properties(${arg_ALONE} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/src ${CMAKE_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE ${arg_LIBRARIES} GTest::gmock GTest::gtest_main glyphward_warnings)
  target_precompile_headers(${name} REUSE_FROM test_headers)
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
  if(NOT CMAKE_DISABLE_PRECOMPILE_HEADERS)
    set_target_properties(${name} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 4)
  endif()
  glyphward_suite(${name} ${arg_KIND})
endfunction()

# glyphward_suite(NAME KIND): makes the program NAME, in the directory "tests" of the build, known as a suite.
function(glyphward_suite name kind)
  if(NOT TARGET ${kind}_suites)
    add_custom_target(${kind}_suites)
  endif()
  add_dependencies(${kind}_suites ${name})
  file(APPEND ${GLYPHWARD_SUITES_FILE} "${kind} ${name} ${CMAKE_BINARY_DIR}/tests/${name}\n")
  foreach(user IN LISTS users_${kind})
    glyphward_run(${GLYPHWARD_CONFIG}.${user}.${name} ${kind} ${user}
      ${GLYPHWARD_CONFIG} ${user} ${kind} ${name} ${limit_${kind}} ${CMAKE_BINARY_DIR}/tests/${name})
  endforeach()
endfunction()

# glyphward_run(TEST KIND USER ARGUMENT...): runs scripts/suite with the arguments. scripts/suite ends a test that takes
# too long and says so; CTest's own limit is for the case that it fails to.
function(glyphward_run test kind user)
  add_test(NAME ${test} COMMAND ${CMAKE_SOURCE_DIR}/scripts/suite ${ARGN})
  math(EXPR limit "${limit_${kind}} + 60")
  set(cost ${cost_${kind}})
  # Those that take long begin early, so that none of them is left alone at the end.
  if(test MATCHES "[.](crash_|package_)")
    set(cost 60)
  endif()
  set_tests_properties(${test} PROPERTIES LABELS "${kind};${user}" TIMEOUT ${limit} COST ${cost})
endfunction()

# glyphward_check(NAME COMMAND...): a test of the tree itself.
set(limit_check 1800)
set(cost_check 40)
function(glyphward_check name)
  file(APPEND ${GLYPHWARD_SUITES_FILE} "check ${name} ${ARGN}\n")
  glyphward_run(check.${name} check any tree any check ${name} ${limit_check} ${ARGN})
endfunction()
