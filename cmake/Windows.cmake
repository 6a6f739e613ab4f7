# What a build for Windows needs beside: one file for each program, with all that it needs in it, and
# libraries that Debian has as sources or as headers alone.

enable_language(RC)
set(KELVARO_HOST_INCLUDE /usr/include CACHE PATH "Where headers lie that know no operating system")
set(KELVARO_GOOGLETEST /usr/src/googletest CACHE PATH "Where GoogleTest's sources lie")

target_compile_definitions(kelvaro_options INTERFACE
  _WIN32_WINNT=0x0A00 WIN32_LEAN_AND_MEAN NOMINMAX STRICT)
# Without the time, which would make other bytes of the same sources.
target_link_options(kelvaro_options INTERFACE -static LINKER:--no-insert-timestamp)

# The folder of the host's headers as a whole would hide Windows' own ones.
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/include)
foreach(library CLI rapidjson)
  file(CREATE_LINK ${KELVARO_HOST_INCLUDE}/${library} ${CMAKE_BINARY_DIR}/include/${library}
       SYMBOLIC)
endforeach()
set(RAPIDJSON_INCLUDE_DIRS ${CMAKE_BINARY_DIR}/include)
add_library(CLI11::CLI11 INTERFACE IMPORTED)
set_target_properties(CLI11::CLI11 PROPERTIES
  INTERFACE_INCLUDE_DIRECTORIES ${CMAKE_BINARY_DIR}/include)

if(KELVARO_TESTS)
  set(googletest ${KELVARO_GOOGLETEST}/googletest)
  add_library(gtest STATIC EXCLUDE_FROM_ALL ${googletest}/src/gtest-all.cc)
  add_library(gtest_main STATIC EXCLUDE_FROM_ALL ${googletest}/src/gtest_main.cc)
  foreach(library gtest gtest_main)
    target_include_directories(${library} SYSTEM PUBLIC ${googletest}/include)
    target_include_directories(${library} PRIVATE ${googletest})
    add_library(GTest::${library} ALIAS ${library})
  endforeach()
  target_link_libraries(gtest_main PUBLIC gtest)
endif()

# kelvaro_desktop_test(NAME COMMAND...): a test that tests/windows/desktop runs. They take turns, and
# begin first, so that all the others run beside them.
function(kelvaro_desktop_test name)
  add_test(NAME ${name} COMMAND ${CMAKE_SOURCE_DIR}/tests/windows/desktop ${ARGN})
  set_tests_properties(${name} PROPERTIES RESOURCE_LOCK desktop COST 1000 TIMEOUT 900)
endfunction()

file(STRINGS ${CMAKE_SOURCE_DIR}/LICENSE KELVARO_COPYRIGHT REGEX "^Copyright")
set(KELVARO_SHOWN_VERSION ${PROJECT_VERSION})
string(REGEX REPLACE "\\.0$" "" KELVARO_SHOWN_VERSION ${KELVARO_SHOWN_VERSION})

# kelvaro_resources(TARGET [DESCRIPTION text] [VERSION version]): what Windows shows of a program in its
# folder and in its properties: icon, and version, which is the project's unless another is told.
function(kelvaro_resources target)
  cmake_parse_arguments(arg "" "DESCRIPTION;VERSION" "" ${ARGN})
  if(NOT arg_VERSION)
    set(arg_VERSION ${KELVARO_SHOWN_VERSION})
  endif()
  string(REPLACE "." ";" numbers "${arg_VERSION}.0.0")
  list(SUBLIST numbers 0 4 numbers)
  string(JOIN ", " numbers ${numbers})
  configure_file(${CMAKE_SOURCE_DIR}/app/platform/windows/version.rc.in ${target}-version.rc @ONLY)
  target_sources(${target} PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/${target}-version.rc)
  kelvaro_drawn(${target} icons)
endfunction()
