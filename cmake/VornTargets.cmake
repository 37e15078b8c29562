# SPDX-License-Identifier: MIT
# The four kinds of target that the project has. Everything a folder's CMakeLists.txt does not say
# about its target is said here, once.

get_filename_component(VORN_ROOT "${CMAKE_CURRENT_LIST_DIR}/.." ABSOLUTE)
if(WIN32)
  include(VornWindows)
endif()

# Warnings and sanitizers sit on interface targets that are linked privately, so neither reaches a
# build that only uses the libraries.
add_library(vorn_warnings INTERFACE)
add_library(vorn_sanitizers INTERFACE)

option(VORN_WARNINGS_AS_ERRORS "Treat compiler warnings as errors" OFF)
set(VORN_SANITIZE "" CACHE STRING "Sanitizers to build with, as -fsanitize= takes them")

if(PROJECT_IS_TOP_LEVEL)
  if(MSVC)
    target_compile_options(vorn_warnings INTERFACE /W4 /permissive- /utf-8
                           $<$<BOOL:${VORN_WARNINGS_AS_ERRORS}>:/WX>)
  else()
    target_compile_options(
      vorn_warnings
      INTERFACE -Wall
                -Wextra
                -Wpedantic
                -Wshadow
                -Wconversion
                -Wsign-conversion
                -Wold-style-cast
                -Woverloaded-virtual
                -Wcast-qual
                -Wformat=2
                -Wundef
                -Wextra-semi
                -Wimplicit-fallthrough
                $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety>
                $<$<CXX_COMPILER_ID:Clang>:-Werror=thread-safety>
                $<$<CXX_COMPILER_ID:GNU>:-Wduplicated-cond>
                $<$<CXX_COMPILER_ID:GNU>:-Wlogical-op>
                $<$<BOOL:${VORN_WARNINGS_AS_ERRORS}>:-Werror>)
  endif()
endif()

if(VORN_SANITIZE)
  target_compile_options(vorn_sanitizers INTERFACE -fsanitize=${VORN_SANITIZE}
                         -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(vorn_sanitizers INTERFACE -fsanitize=${VORN_SANITIZE})
endif()

# vorn_target_defaults(TARGET)
#
# What every target of this project has in common, for those that are none of the kinds below.
function(vorn_target_defaults target)
  set_target_properties(
    ${target}
    PROPERTIES AUTOMOC ON
               AUTOUIC ON
               AUTORCC ON
               # Not every Qt can unpack zstd, which rcc takes when the host's Qt can.
               AUTORCC_OPTIONS --no-zstd
               CXX_STANDARD 20
               CXX_STANDARD_REQUIRED ON
               CXX_EXTENSIONS OFF)
  target_compile_definitions(${target} PRIVATE QT_NO_CAST_TO_ASCII QT_NO_FOREACH
                                               QT_NO_URL_CAST_FROM_STRING)
  if(WIN32)
    # windows.h without the macros min and max and without what nobody here uses.
    target_compile_definitions(${target} PRIVATE NOMINMAX WIN32_LEAN_AND_MEAN)
  endif()
  target_link_libraries(${target} PRIVATE vorn_warnings vorn_sanitizers)
endfunction()

# vorn_library(FOLDER SOURCES file... [PUBLIC target...] [PRIVATE target...])
#
# The static library vorn_FOLDER with the alias Vorn::FOLDER; an interface library when it has no
# sources. Whoever links it includes its headers as "FOLDER/Name.h". What needs widgets in a folder that
# does without them otherwise is a library of its own, FOLDER_ui.
function(vorn_library folder)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;PUBLIC;PRIVATE")
  set(target vorn_${folder})
  if(arg_SOURCES)
    add_library(${target} STATIC ${arg_SOURCES})
    vorn_target_defaults(${target})
    target_include_directories(${target} PUBLIC "${VORN_ROOT}")
    target_compile_features(${target} PUBLIC cxx_std_20)
    target_link_libraries(${target} PUBLIC ${arg_PUBLIC} PRIVATE ${arg_PRIVATE})
  else()
    add_library(${target} INTERFACE)
    target_include_directories(${target} INTERFACE "${VORN_ROOT}")
    target_compile_features(${target} INTERFACE cxx_std_20)
    target_link_libraries(${target} INTERFACE ${arg_PUBLIC})
  endif()
  add_library(Vorn::${folder} ALIAS ${target})
endfunction()

# vorn_executable(NAME SOURCES file... LINK target... [WINDOWED])
#
# A program; WINDOWED keeps the console window away on Windows.
function(vorn_executable name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "WINDOWED" "" "SOURCES;LINK")
  add_executable(${name} ${arg_SOURCES})
  vorn_target_defaults(${name})
  target_link_libraries(${name} PRIVATE ${arg_LINK})
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
  if(arg_WINDOWED)
    set_target_properties(${name} PROPERTIES WIN32_EXECUTABLE ON)
  endif()
  if(WIN32)
    _vorn_windows_program(${name})
  endif()
endfunction()

# vorn_test(NAME SOURCES file... LINK target... [LABELS label...] [RESOURCE_LOCK name] [LONG])
#
# One GoogleTest program NAME, each of its tests a test of CTest with the label NAME. They run on
# the offscreen platform with an empty home of their own (tests/harness/TestMain.cpp).
#
# LONG: those of its tests whose names begin with "Long/" are one test of CTest, NAME_long, that only
# ctest -C Long runs.
function(vorn_test name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "LONG" "RESOURCE_LOCK" "SOURCES;LINK;LABELS")
  add_executable(${name} ${arg_SOURCES})
  vorn_target_defaults(${name})
  target_link_libraries(${name} PRIVATE ${arg_LINK} vorn_test_harness)
  set(properties LABELS "${name};${arg_LABELS}" TIMEOUT 300)
  if(arg_RESOURCE_LOCK)
    list(APPEND properties RESOURCE_LOCK ${arg_RESOURCE_LOCK})
  endif()
  set(filter)
  if(arg_LONG)
    set(filter TEST_FILTER "-Long/*")
    add_test(NAME ${name}_long COMMAND ${name} --gtest_filter=Long/* CONFIGURATIONS Long)
    set_tests_properties(${name}_long PROPERTIES LABELS "${name};${arg_LABELS};long" TIMEOUT 1800)
  endif()
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60 ${filter}
                       PROPERTIES ${properties})
endfunction()

# vorn_fuzzer(NAME SOURCES file... LINK target...)
#
# A libFuzzer program, for which everything is compiled by clang as the preset "fuzz" says.
function(vorn_fuzzer name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LINK")
  vorn_executable(${name} SOURCES ${arg_SOURCES} LINK ${arg_LINK})
  target_link_options(${name} PRIVATE -fsanitize=fuzzer)
endfunction()
