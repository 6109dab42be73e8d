# qos_add_library(NAME DIR [DEPS ...]): a shared library made of every .cpp
# in DIR (subdirectories excluded), with the repository root as include path.
function(qos_add_library name dir)
  cmake_parse_arguments(ARG "" "" "DEPS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${dir}/*.cpp)
  add_library(${name} SHARED ${sources})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR})
  target_link_libraries(${name} PUBLIC ${ARG_DEPS})
endfunction()

# qos_test_compile_options(TARGET): a test program is compiled for build
# time, not speed: -O1 in the optimised build types, and in RelWithDebInfo
# (the sanitizer build's type) only line tables (-g1), which is all the
# sanitizers' reports need. What the tests exercise, the libraries and the
# agent, keeps the build type's flags. A Debug build keeps -O0 -g, for
# stepping through a test.
function(qos_test_compile_options target)
  target_compile_options(${target} PRIVATE $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-O1>
                                           $<$<CONFIG:RelWithDebInfo>:-g1>)
endfunction()

# qos_add_tests(DIR DEPS ...): one GoogleTest executable per *Test.cpp in
# DIR, named after the file, each test case registered with ctest. Adding a
# test file to DIR is all it takes to add it to the suite.
function(qos_add_tests dir)
  cmake_parse_arguments(ARG "" "" "DEPS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${dir}/*Test.cpp)
  foreach(source ${sources})
    get_filename_component(test ${source} NAME_WE)
    add_executable(${test} ${source})
    target_include_directories(${test} PRIVATE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/tests)
    target_link_libraries(${test} PRIVATE ${ARG_DEPS} GTest::gtest GTest::gmock GTest::gtest_main)
    qos_test_compile_options(${test})
    gtest_discover_tests(${test} DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 120)
  endforeach()
endfunction()
