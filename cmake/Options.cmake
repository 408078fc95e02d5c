# SPDX-License-Identifier: MIT
# What may be chosen at configure time, and the flags that every target of ours shares.
option(ORB_BUILD_TOOLS "Build the local function server" ON)
option(ORB_BUILD_EXAMPLES "Build the example programs" ON)
option(ORB_BUILD_TESTS "Build the tests; they run the tools and the examples" OFF)
option(ORB_BUILD_TORTURE "Build the long-running checks of scripts/torture" OFF)
option(ORB_BUILD_BENCHMARKS "Build what scripts/bench runs" OFF)
option(ORB_WARNINGS_AS_ERRORS "Stop at a compiler warning" OFF)
set(ORB_SANITIZE "" CACHE STRING "Sanitizers, as -fsanitize takes them (address,undefined)")
option(ORB_COVERAGE "Count executed lines and branches" OFF)
option(ORB_HARDEN "Let the compiler and the linker guard memory, for optimised builds" OFF)

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 99)
set(CMAKE_C_EXTENSIONS OFF)

if(ORB_SANITIZE)
  add_compile_options(-fsanitize=${ORB_SANITIZE} -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${ORB_SANITIZE})
endif()
if(ORB_COVERAGE)
  add_compile_options(--coverage -fprofile-update=atomic)
  add_link_options(--coverage)
endif()

if(ORB_HARDEN)
  # Together at most 3 % more instructions a call.
  add_compile_options(-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2 -D_GLIBCXX_ASSERTIONS
                      -fstack-protector-strong -fstack-clash-protection -fcf-protection)
  add_link_options(-Wl,-z,relro -Wl,-z,now)
  include(CheckPIESupported)
  check_pie_supported()
  set(CMAKE_POSITION_INDEPENDENT_CODE ON)
endif()

# Our own sources are held to these; the generated ones are not.
add_library(orb_warnings INTERFACE)
target_compile_options(orb_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion
  $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor -Woverloaded-virtual>
  # In C++, clang counts changes of sign among the conversions, and g++ does not. libcurl's
  # stand-ins in the tests have libcurl's prototypes: an enumeration before the dots.
  $<$<COMPILE_LANG_AND_ID:CXX,Clang>:-Wno-sign-conversion -Wno-varargs>
  $<$<BOOL:${ORB_WARNINGS_AS_ERRORS}>:-Werror>)
