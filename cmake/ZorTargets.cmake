include_guard()

# zor_add_folder(name SOURCES a.cpp ... USES lower folders and packages ...)
# One folder of src/ as a static library zor_<name>; what it may include is what it USES. Those above the archive share
# its precompiled headers (which works as long as they are compiled with the same definitions).
function(zor_add_folder name)
  cmake_parse_arguments(ARG "" "" "SOURCES;USES" ${ARGN})
  add_library(zor_${name} STATIC ${ARG_SOURCES})
  target_include_directories(zor_${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(zor_${name} PRIVATE zor_warnings PUBLIC ${ARG_USES})
  zor_precompile(zor_${name} zor_archive src/precompiled.h)
endfunction()

# zor_precompile(target owner header)
# Compiles the header, once, for its owner, and lets every other target that comes after use it. Before the owner, and
# in folders that set CMAKE_DISABLE_PRECOMPILE_HEADERS, targets do without.
function(zor_precompile target owner header)
  if(target STREQUAL owner)
    target_precompile_headers(${target} PRIVATE ${PROJECT_SOURCE_DIR}/${header})
  elseif(TARGET ${owner})
    target_precompile_headers(${target} REUSE_FROM ${owner})
  endif()
endfunction()

# zor_add_test(name SOURCES a_test.cpp ... USES targets ... [THREADS pattern])
# One test program of GoogleTest cases, each of them a CTest test. Cases that match THREADS, a GoogleTest filter such
# as TaskPool.*:StreamLog.*, get the label `threads`: they run under the thread sanitizer, too.
function(zor_add_test name)
  cmake_parse_arguments(ARG "" "THREADS" "SOURCES;USES" ${ARGN})
  add_executable(${name}_test ${ARG_SOURCES})
  target_include_directories(${name}_test PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_link_libraries(${name}_test PRIVATE
    zor_warnings ${ARG_USES} rapidcheck GTest::gmock GTest::gtest GTest::gtest_main)
  zor_precompile(${name}_test archive_test tests/precompiled.h)
  if(ZOR_SANITIZE)
    target_compile_options(${name}_test PRIVATE -O0)  # half the time to compile; the library keeps its level
  endif()
  set(discovery DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60)
  if(ARG_THREADS)
    gtest_discover_tests(${name}_test ${discovery} TEST_FILTER ${ARG_THREADS} TEST_LIST ${name}_thread_tests
      PROPERTIES TIMEOUT 600 LABELS threads)
    set_property(GLOBAL APPEND PROPERTY ZOR_THREAD_TESTS ${name}_test)
    gtest_discover_tests(${name}_test ${discovery} TEST_FILTER -${ARG_THREADS} PROPERTIES TIMEOUT 600)
  else()
    gtest_discover_tests(${name}_test ${discovery} PROPERTIES TIMEOUT 600)
  endif()
endfunction()

# zor_add_bench(name SOURCES a_bench.cpp ... USES targets ...)
function(zor_add_bench name)
  cmake_parse_arguments(ARG "" "" "SOURCES;USES" ${ARGN})
  add_executable(${name}_bench ${ARG_SOURCES})
  target_link_libraries(${name}_bench PRIVATE zor_warnings ${ARG_USES} benchmark::benchmark_main)
endfunction()
