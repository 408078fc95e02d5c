# SPDX-License-Identifier: MIT
# What may be chosen at configure time, and the flags that every target of ours shares.
option(ORB_BUILD_TOOLS "Build the local function server" ON)
option(ORB_BUILD_EXAMPLES "Build the example programs" ON)
option(ORB_BUILD_TESTS "Build the tests; they run the tools and the examples" OFF)
option(ORB_BUILD_BENCHMARKS "Build what scripts/bench runs" OFF)
option(ORB_WARNINGS_AS_ERRORS "Stop at a compiler warning" OFF)
set(ORB_SANITIZE "" CACHE STRING "Sanitizers, as -fsanitize takes them (address,undefined)")
option(ORB_COVERAGE "Count executed lines and branches" OFF)

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

# Our own sources are held to these; the generated ones are not.
add_library(orb_warnings INTERFACE)
target_compile_options(orb_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion
  $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor -Woverloaded-virtual>
  $<$<BOOL:${ORB_WARNINGS_AS_ERRORS}>:-Werror>)
