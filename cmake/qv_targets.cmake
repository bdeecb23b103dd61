# One function for each kind of target, so that a room's CMakeLists.txt is a list of its files.

# Flags that every target of the project compiles with.
add_library(qv_flags INTERFACE)
target_compile_features(qv_flags INTERFACE cxx_std_20)
# Contraction off: optimised and debug builds give the same bits.
target_compile_options(qv_flags INTERFACE -ffp-contract=off -Wall -Wextra -Wpedantic -Wshadow
                                          -Wnon-virtual-dtor -Woverloaded-virtual
                                          # GCC 12 sees overlaps in std::string that are not there
                                          # (its bug 105651).
                                          $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
                                          # Nobody replaces a function of these libraries at run
                                          # time, so that they may be inlined within them.
                                          $<$<CONFIG:Release>:-fno-semantic-interposition>)
if(QV_WARNINGS_AS_ERRORS)
  target_compile_options(qv_flags INTERFACE -Werror)
endif()
if(QV_SANITIZE)
  target_compile_options(qv_flags INTERFACE -fsanitize=${QV_SANITIZE} -fno-omit-frame-pointer
                                            -fno-sanitize-recover=all)
  target_link_options(qv_flags INTERFACE -fsanitize=${QV_SANITIZE})
endif()

# What nearly every source includes is compiled once for a target in the builds that only test;
# the release build shows that each source includes what it needs.
function(qv_precompile name)
  if(QV_SANITIZE)
    target_precompile_headers(${name} PRIVATE ${ARGN})
  endif()
endfunction()
set(QV_STANDARD_HEADERS <algorithm> <array> <cmath> <filesystem> <functional> <limits> <map> <memory>
                        <optional> <set> <sstream> <string> <string_view> <unordered_map> <utility>
                        <vector>)

# qv_library(<name> SOURCES … HEADERS … [PUBLIC libs…] [PRIVATE libs…] [ROOT dir])
# A shared library whose headers are included relative to ROOT (default: the parent folder). The
# library qv_bim is qv::bim to other projects, whether they take this one in as a subdirectory or
# find it installed.
function(qv_library name)
  cmake_parse_arguments(arg "" "ROOT" "SOURCES;HEADERS;PUBLIC;PRIVATE" ${ARGN})
  if(NOT arg_ROOT)
    get_filename_component(arg_ROOT "${CMAKE_CURRENT_SOURCE_DIR}/.." ABSOLUTE)
  endif()
  add_library(${name} SHARED ${arg_SOURCES})
  target_sources(${name} PUBLIC FILE_SET HEADERS BASE_DIRS ${arg_ROOT} FILES ${arg_HEADERS})
  target_link_libraries(${name} PUBLIC ${arg_PUBLIC} PRIVATE ${arg_PRIVATE} $<BUILD_INTERFACE:qv_flags>)
  target_compile_features(${name} PUBLIC cxx_std_20)
  qv_precompile(${name} ${QV_STANDARD_HEADERS})
  set_target_properties(${name} PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}
                                           LINKER_LANGUAGE CXX INSTALL_RPATH "$ORIGIN")
  string(REGEX REPLACE "^qv_" "" short_name ${name})
  set_target_properties(${name} PROPERTIES EXPORT_NAME ${short_name})
  add_library(qv::${short_name} ALIAS ${name})
endfunction()

# Tests and benchmarks find files of the project by this header.
configure_file(${PROJECT_SOURCE_DIR}/tests/support/qv_test_paths.h.in
               ${PROJECT_BINARY_DIR}/generated/tests/support/qv_test_paths.h @ONLY)

# qv_allow_kept_memory(<name>): the leak check of a program that writes text into pictures leaves out
# what the system's libraries keep.
function(qv_allow_kept_memory name)
  if(QV_SANITIZE MATCHES address)
    target_sources(${name} PRIVATE ${PROJECT_SOURCE_DIR}/cmake/lsan_suppressions.cpp)
  endif()
endfunction()

# qv_test(<name> SOURCES … LIBS …): a GoogleTest program; CTest knows each of its suites.
function(qv_test name)
  cmake_parse_arguments(arg "" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR} ${PROJECT_BINARY_DIR}/generated)
  target_link_libraries(${name} PRIVATE ${arg_LIBS} qv_flags GTest::gtest GTest::gmock GTest::gtest_main)
  qv_precompile(${name} ${QV_STANDARD_HEADERS} <gtest/gtest.h> <gmock/gmock.h>)
  if(QV_SANITIZE)
    # What is tested is compiled with the preset's optimisation; the tests themselves, each of which
    # runs for a moment, compile in half the time without.
    target_compile_options(${name} PRIVATE -O0)
  endif()
  set(discovery ${CMAKE_CURRENT_BINARY_DIR}/${name}_tests.cmake)
  file(GENERATE OUTPUT ${discovery} CONTENT
"include([==[${PROJECT_SOURCE_DIR}/cmake/qv_discover_tests.cmake]==])
qv_discover_tests([==[$<TARGET_FILE:${name}>]==] [==[TSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/cmake/tsan.supp]==])
")
  set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${discovery})
endfunction()

# qv_bench_program(<name> SOURCES … LIBS …): a Google Benchmark program, built by name only where
# sanitizers would falsify what it measures.
function(qv_bench_program name)
  cmake_parse_arguments(arg "" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR} ${PROJECT_BINARY_DIR}/generated)
  target_link_libraries(${name} PRIVATE ${arg_LIBS} qv_flags benchmark::benchmark)
  if(QV_SANITIZE)
    set_target_properties(${name} PROPERTIES EXCLUDE_FROM_ALL ON)
  endif()
endfunction()
