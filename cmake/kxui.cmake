# Helpers that keep every CMakeLists short.
set(KXUI_WARNINGS -Wall -Wextra -Wpedantic)
# g++ 12 at -O3 reports overlapping copies inside std::string's own "text" + string
# (its bug 105651), in code that has none; the other compilers keep the check.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  list(APPEND KXUI_WARNINGS -Wno-restrict)
endif()
# Installed headers keep their kxui/... and services/... paths under one folder of their own.
set(KXUI_INSTALL_INCLUDEDIR ${CMAKE_INSTALL_INCLUDEDIR}/KxUI03)

# kxui_sources(VAR DIR...): the non-test sources of the given folders and their subfolders.
function(kxui_sources out)
  set(result)
  foreach(dir IN LISTS ARGN)
    file(GLOB_RECURSE srcs CONFIGURE_DEPENDS ${dir}/*.cpp)
    list(FILTER srcs EXCLUDE REGEX "_test\\.cpp$")
    list(APPEND result ${srcs})
  endforeach()
  set(${out} ${result} PARENT_SCOPE)
endfunction()

# kxui_tests(DIR LIBS...): one test program for a folder's *_test.cpp files.
function(kxui_tests dir)
  file(GLOB tests CONFIGURE_DEPENDS ${dir}/*_test.cpp)
  if(NOT tests OR NOT KXUI_BUILD_TESTS)
    return()
  endif()
  # Named after the folder's path in the project: kxui/frame -> kxui_frame_test.
  file(RELATIVE_PATH rel ${PROJECT_SOURCE_DIR} ${dir})
  string(REPLACE "/" "_" target "${rel}_test")
  add_executable(${target} ${tests})
  target_link_libraries(${target} PRIVATE ${ARGN} GTest::gmock GTest::gtest_main)
  target_compile_options(${target} PRIVATE ${KXUI_WARNINGS})
  # Labelled with the program, so one folder's tests can run alone (ctest -L).
  gtest_discover_tests(${target} DISCOVERY_MODE PRE_TEST PROPERTIES LABELS ${target})
  # The library's programs run a second time with every record set the test doubles
  # build reading its rows on demand: both kinds must behave the same.
  if(rel MATCHES "^kxui/" AND "kxui_testing" IN_LIST ARGN)
    gtest_discover_tests(${target} DISCOVERY_MODE PRE_TEST TEST_PREFIX "on_demand."
                         PROPERTIES ENVIRONMENT "KXUI_TEST_ROWS=on-demand" LABELS ${target})
  endif()
endfunction()

# kxui_bench(NAME SRC LIBS...)
function(kxui_bench name src)
  add_executable(${name} ${src})
  target_link_libraries(${name} PRIVATE ${ARGN} benchmark::benchmark)
  target_compile_options(${name} PRIVATE ${KXUI_WARNINGS})
endfunction()
