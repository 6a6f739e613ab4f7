# What a build for Windows needs beside: one file for each program, with all that it needs in it, and
# libraries that Debian has as sources or as headers alone.

enable_language(RC)
set(KELVARO_HOST_INCLUDE /usr/include CACHE PATH "Where headers lie that know no operating system")
set(KELVARO_GOOGLETEST /usr/src/googletest CACHE PATH "Where GoogleTest's sources lie")

target_compile_definitions(kelvaro_options INTERFACE
  _WIN32_WINNT=0x0A00 WIN32_LEAN_AND_MEAN NOMINMAX STRICT)
target_link_options(kelvaro_options INTERFACE -static)

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
