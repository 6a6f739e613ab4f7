# One library a folder: the folder's own sources, the warnings that all of this code is held to, and
# no links but the ones named.

add_library(kelvaro_options INTERFACE)
target_include_directories(kelvaro_options INTERFACE ${CMAKE_SOURCE_DIR})
# The presets make errors of them (CMAKE_COMPILE_WARNING_AS_ERROR); a compiler that warns of more
# than ours do stops nobody else's build.
target_compile_options(kelvaro_options INTERFACE -Wall -Wextra -Wpedantic)
# g++ 12 at -O2 and above sees overlapping copies in the library's own "text" + std::string.
target_compile_options(kelvaro_options INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
if(KELVARO_SANITIZE)
  target_compile_options(kelvaro_options INTERFACE
    -fsanitize=${KELVARO_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(kelvaro_options INTERFACE -fsanitize=${KELVARO_SANITIZE})
endif()
# What makes a fault of memory hard to use: addresses that nobody knows beforehand, tables of
# functions that are filled at the start and read-only from then on, no memory that is both written
# and run, and checks where a buffer's size or the stack tells of a fault. tests/packaging/hardened
# looks for it in the programs.
if(NOT WIN32 AND NOT KELVARO_SANITIZE)
  target_link_options(kelvaro_options INTERFACE LINKER:-z,relro,-z,now,-z,noexecstack)
  set(optimised $<CONFIG:Release,RelWithDebInfo,MinSizeRel>)
  target_compile_options(kelvaro_options INTERFACE
    $<${optimised}:-fPIC> $<${optimised}:-fstack-protector-strong>
    $<${optimised}:-fstack-clash-protection>
    $<${optimised}:-U_FORTIFY_SOURCE> $<${optimised}:-D_FORTIFY_SOURCE=3>)
  target_link_options(kelvaro_options INTERFACE $<${optimised}:-pie>)
endif()
# What fuzzing looks at, and which lock guards what: the product's code, and none of the tests'.
add_library(kelvaro_watched INTERFACE)
target_compile_options(kelvaro_watched INTERFACE $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety>)
if(KELVARO_FUZZ)
  target_compile_options(kelvaro_watched INTERFACE -fsanitize=fuzzer-no-link)
endif()
# From all threads, and by paths that mean the same from anywhere. The tests, too: of a function in
# a header the linker takes one copy, and that may be theirs.
if(KELVARO_COVERAGE)
  target_compile_options(kelvaro_options INTERFACE --coverage -fprofile-update=atomic
                         -fprofile-abs-path)
  add_library(kelvaro_exits STATIC ${CMAKE_SOURCE_DIR}/tests/coverage/exits.cc)
  target_link_options(kelvaro_options INTERFACE --coverage LINKER:--undefined=_exit)
  target_link_libraries(kelvaro_options INTERFACE kelvaro_exits)
  # Else each call that might throw brings branches of its own, which are taken only on the way out
  # of a throw that nobody here catches.
  target_compile_options(kelvaro_watched INTERFACE -fno-exceptions)
endif()
# The sanitizers' checks cost tests and fuzzing many times what compiling a little better does.
set(KELVARO_SANITIZED 0)
if(KELVARO_SANITIZE)
  target_compile_options(kelvaro_watched INTERFACE -O1)
  set(KELVARO_SANITIZED 1)
endif()

# Headers that many sources begin with are compiled once for all, where KELVARO_SHARED_HEADERS asks
# for it: in the presets that ./test builds. A build without it tells of an include that is missing.
if(KELVARO_SHARED_HEADERS)
  # Qt asks this of whoever uses it, and headers are shared by those that are compiled alike.
  target_compile_options(kelvaro_options INTERFACE -fPIC)
  file(WRITE ${CMAKE_BINARY_DIR}/headers.cc "")
endif()

# kelvaro_headers(NAME HEADERS... [LINKS links...]): what kelvaro_share_headers takes by that name.
function(kelvaro_headers name)
  cmake_parse_arguments(arg "" "" "LINKS" ${ARGN})
  if(KELVARO_SHARED_HEADERS)
    add_library(${name} OBJECT ${CMAKE_BINARY_DIR}/headers.cc)
    target_link_libraries(${name} PRIVATE kelvaro_options ${arg_LINKS})
    target_precompile_headers(${name} PRIVATE ${arg_UNPARSED_ARGUMENTS})
  endif()
endfunction()

# kelvaro_share_headers(TARGET NAME)
function(kelvaro_share_headers target name)
  if(KELVARO_SHARED_HEADERS)
    target_precompile_headers(${target} REUSE_FROM ${name})
  endif()
endfunction()

kelvaro_headers(kelvaro_headers_standard <algorithm> <cstdint> <cstring> <functional> <map> <memory>
  <optional> <string> <vector> LINKS kelvaro_watched)

# kelvaro_apart(FILES...): sources of this folder that are compiled by themselves where others are
# compiled several at a time (CMAKE_UNITY_BUILD, as in most presets): their own names,
# or the macros of X11 that they include, clash with a neighbour's.
function(kelvaro_apart)
  set_source_files_properties(${ARGN} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
endfunction()
# g++ takes each of them for a header then.
if(CMAKE_UNITY_BUILD AND CMAKE_CXX_COMPILER_ID STREQUAL GNU)
  add_compile_options(-Wno-subobject-linkage)
endif()

# kelvaro_throws(FILES...): sources of this folder that throw or catch.
function(kelvaro_throws)
  if(KELVARO_COVERAGE)
    set_source_files_properties(${ARGN} PROPERTIES COMPILE_OPTIONS -fexceptions
                                SKIP_PRECOMPILE_HEADERS ON)
  endif()
endfunction()

# kelvaro_library(NAME [HEADERS name] [links...]): target kelvaro_NAME of this folder's *.cc. A main.cc
# stays out: all of a program but main is a library, so that tests link it too.
function(kelvaro_library name)
  cmake_parse_arguments(arg "" "HEADERS" "" ${ARGN})
  if(NOT arg_HEADERS)
    set(arg_HEADERS kelvaro_headers_standard)
  endif()
  file(GLOB sources CONFIGURE_DEPENDS *.cc)
  list(REMOVE_ITEM sources ${CMAKE_CURRENT_SOURCE_DIR}/main.cc)
  add_library(kelvaro_${name} STATIC ${sources})
  target_link_libraries(kelvaro_${name} PUBLIC kelvaro_options ${arg_UNPARSED_ARGUMENTS}
                        PRIVATE kelvaro_watched)
  kelvaro_share_headers(kelvaro_${name} ${arg_HEADERS})
endfunction()

# kelvaro_manifest(TARGET): what Windows reads before it starts that program, such as that its text is
# UTF-8. Nothing elsewhere.
function(kelvaro_manifest target)
  if(WIN32)
    target_sources(${target} PRIVATE ${CMAKE_SOURCE_DIR}/app/platform/windows/manifest.rc)
    set_property(SOURCE ${CMAKE_SOURCE_DIR}/app/platform/windows/manifest.rc APPEND PROPERTY
                 OBJECT_DEPENDS ${CMAKE_SOURCE_DIR}/app/platform/windows/program.manifest)
  endif()
endfunction()

# kelvaro_program(NAME LIBRARY [DESCRIPTION text] [VERSION version]): the program NAME of this folder's
# main.cc, beside the others and installed. The last two are for Windows (kelvaro_resources).
function(kelvaro_program name library)
  add_executable(${name} main.cc)
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${KELVARO_BIN})
  target_link_libraries(${name} PRIVATE ${library})
  kelvaro_manifest(${name})
  if(WIN32)
    kelvaro_resources(${name} ${ARGN})
  endif()
  install(TARGETS ${name} DESTINATION .)
endfunction()

# kelvaro_test(NAME [THREADS] [HEADERS name] links...): GoogleTest program test_NAME of this folder's
# *_test.cc, which may bring a main of their own. THREADS says that it runs real threads, which puts
# it before the thread sanitizer too (target threaded_tests, label threads).
function(kelvaro_test name)
  cmake_parse_arguments(arg "THREADS" "HEADERS" "" ${ARGN})
  if(NOT arg_HEADERS)
    set(arg_HEADERS kelvaro_headers_tests)
  endif()
  file(GLOB sources CONFIGURE_DEPENDS *_test.cc)
  if(NOT sources)
    return()
  endif()
  add_executable(test_${name} ${sources})
  target_link_libraries(test_${name} PRIVATE
    kelvaro_options ${arg_UNPARSED_ARGUMENTS} GTest::gtest GTest::gtest_main)
  kelvaro_share_headers(test_${name} ${arg_HEADERS})
  kelvaro_manifest(test_${name})
  add_test(NAME ${name} COMMAND test_${name})
  set_tests_properties(${name} PROPERTIES TIMEOUT 900)
  if(arg_THREADS)
    set_tests_properties(${name} PROPERTIES LABELS threads)
    if(NOT TARGET threaded_tests)
      add_custom_target(threaded_tests)
    endif()
    add_dependencies(threaded_tests test_${name})
  endif()
endfunction()

# kelvaro_own_allocator(TARGET): that test program counts allocations and lets them fail
# (tests/foundation/allocations.h).
function(kelvaro_own_allocator target)
  target_sources(${target} PRIVATE ${CMAKE_SOURCE_DIR}/tests/foundation/allocations.cc)
  # The letter is the type of a size: long long on 64-bit Windows.
  set(size m)
  if(WIN32)
    set(size y)
  endif()
  foreach(operator _Znw${size} _Zna${size} _Znw${size}RKSt9nothrow_t _Zna${size}RKSt9nothrow_t
          _ZdlPv _ZdaPv _ZdlPv${size} _ZdaPv${size})
    target_link_options(${target} PRIVATE LINKER:--wrap=${operator})
  endforeach()
endfunction()
