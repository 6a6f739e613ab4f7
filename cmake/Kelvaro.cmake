# One library a folder: the folder's own sources, the warnings that all of this code is held to, and
# no links but the ones named.

add_library(kelvaro_options INTERFACE)
target_include_directories(kelvaro_options INTERFACE ${CMAKE_SOURCE_DIR})
target_compile_options(kelvaro_options INTERFACE -Wall -Wextra -Wpedantic -Werror)
# g++ 12 at -O2 and above sees overlapping copies in the library's own "text" + std::string.
target_compile_options(kelvaro_options INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
if(KELVARO_SANITIZE)
  target_compile_options(kelvaro_options INTERFACE
    -fsanitize=${KELVARO_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(kelvaro_options INTERFACE -fsanitize=${KELVARO_SANITIZE})
endif()
if(KELVARO_FUZZ)
  target_compile_options(kelvaro_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

# kelvaro_library(NAME [links...]): target kelvaro_NAME of this folder's *.cc.
function(kelvaro_library name)
  file(GLOB sources CONFIGURE_DEPENDS *.cc)
  add_library(kelvaro_${name} STATIC ${sources})
  target_link_libraries(kelvaro_${name} PUBLIC kelvaro_options ${ARGN})
endfunction()

# kelvaro_test(NAME [THREADS] links...): GoogleTest program test_NAME of this folder's *_test.cc.
# THREADS says that it runs real threads, which puts it before the thread sanitizer too (target
# threaded_tests, label threads).
function(kelvaro_test name)
  cmake_parse_arguments(arg "THREADS" "" "" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS *_test.cc)
  if(NOT sources)
    return()
  endif()
  add_executable(test_${name} ${sources})
  target_link_libraries(test_${name} PRIVATE
    kelvaro_options ${arg_UNPARSED_ARGUMENTS} GTest::gtest GTest::gtest_main)
  target_precompile_headers(test_${name} PRIVATE <gtest/gtest.h>)
  add_test(NAME ${name} COMMAND test_${name})
  set_tests_properties(${name} PROPERTIES TIMEOUT 300)
  if(arg_THREADS)
    set_tests_properties(${name} PROPERTIES LABELS threads)
    if(NOT TARGET threaded_tests)
      add_custom_target(threaded_tests)
    endif()
    add_dependencies(threaded_tests test_${name})
  endif()
endfunction()
