# Warnings are errors on our own code; headers of other packages are SYSTEM and stay silent.
add_library(zor_warnings INTERFACE)
target_compile_options(zor_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wmissing-declarations -Werror)

# zor_add_folder(name SOURCES a.cpp ... USES lower folders and packages ...)
# One folder of src/ as a static library zor_<name>; what it may include is what it USES.
function(zor_add_folder name)
  cmake_parse_arguments(ARG "" "" "SOURCES;USES" ${ARGN})
  add_library(zor_${name} STATIC ${ARG_SOURCES})
  target_include_directories(zor_${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(zor_${name} PRIVATE zor_warnings PUBLIC ${ARG_USES})
endfunction()

# zor_add_test(name SOURCES a_test.cpp ... USES targets ...)
# One test program of GoogleTest cases, each of them a CTest test.
function(zor_add_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;USES" ${ARGN})
  add_executable(${name}_test ${ARG_SOURCES})
  target_include_directories(${name}_test PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_link_libraries(${name}_test PRIVATE
    zor_warnings ${ARG_USES} rapidcheck GTest::gmock GTest::gtest GTest::gtest_main)
  gtest_discover_tests(${name}_test DISCOVERY_MODE PRE_TEST PROPERTIES TIMEOUT 600)
endfunction()

# zor_add_bench(name SOURCES a_bench.cpp ... USES targets ...)
function(zor_add_bench name)
  cmake_parse_arguments(ARG "" "" "SOURCES;USES" ${ARGN})
  add_executable(${name}_bench ${ARG_SOURCES})
  target_link_libraries(${name}_bench PRIVATE zor_warnings ${ARG_USES} benchmark::benchmark_main)
endfunction()
