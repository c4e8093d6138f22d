# How everything is compiled: the compiler cache, the sanitizers, the level of the processor, the warnings.
include_guard()

find_program(ZOR_CCACHE ccache)
if(ZOR_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  # Without this it would not keep what is compiled with precompiled headers.
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros ${ZOR_CCACHE})
  add_compile_options($<$<COMPILE_LANG_AND_ID:CXX,GNU>:-fpch-preprocess>)
endif()

if(ZOR_SANITIZE)
  add_compile_options(-fsanitize=${ZOR_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${ZOR_SANITIZE})
  # The thread sanitizer does not know the fences that Boost.Asio sets around a job. Its queue is locked anyway.
  if(ZOR_SANITIZE STREQUAL "thread")
    add_compile_definitions(BOOST_ASIO_DISABLE_FENCED_BLOCK)
  endif()
endif()
if(ZOR_HWCAPS)
  add_compile_options(-march=${ZOR_HWCAPS})
endif()

# Warnings are errors on our own code; headers of other packages are SYSTEM and stay silent. Clang objects to macros of
# GoogleTest that are called without their optional arguments.
add_library(zor_warnings INTERFACE)
target_compile_options(zor_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wmissing-declarations -Werror
  $<$<COMPILE_LANG_AND_ID:CXX,Clang>:-Wno-gnu-zero-variadic-macro-arguments>)
