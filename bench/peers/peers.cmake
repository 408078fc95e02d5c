# SPDX-License-Identifier: MIT
# The contenders from outside. One whose packages are not installed is left out.

#   bench_peer(<name> SOURCES <file>... LIBRARIES <target>...)
# Makes client and server of a peer from client/<name>.cpp, server/<name>.cpp and what
# both share.
function(bench_peer name)
  cmake_parse_arguments(PARSE_ARGV 1 peer "" "" "SOURCES;LIBRARIES")
  add_library(bench_peer_${name} STATIC ${peer_SOURCES})
  # Generated sources and their headers keep other habits than ours.
  target_include_directories(bench_peer_${name} SYSTEM PUBLIC ${CMAKE_CURRENT_BINARY_DIR})
  target_include_directories(bench_peer_${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
  target_link_libraries(bench_peer_${name} PUBLIC ${peer_LIBRARIES})
  bench_client(${name} SOURCES client/${name}.cpp LIBRARIES bench_peer_${name})
  bench_server(${name} SOURCES server/${name}.cpp LIBRARIES bench_peer_${name})
endfunction()

set(peers ${CMAKE_CURRENT_SOURCE_DIR}/peers)
set(generated ${CMAKE_CURRENT_BINARY_DIR})

pkg_check_modules(GRPC IMPORTED_TARGET grpc++)
find_program(GRPC_CPP_PLUGIN grpc_cpp_plugin)
if(GRPC_FOUND AND GRPC_CPP_PLUGIN)
  set(grpc_sources peer.pb.cc peer.pb.h peer.grpc.pb.cc peer.grpc.pb.h)
  list(TRANSFORM grpc_sources PREPEND ${generated}/)
  add_custom_command(
    OUTPUT ${grpc_sources}
    COMMAND protobuf::protoc --proto_path=${peers} --cpp_out=${generated}
            --grpc_out=${generated} --plugin=protoc-gen-grpc=${GRPC_CPP_PLUGIN}
            ${peers}/peer.proto
    DEPENDS ${peers}/peer.proto protobuf::protoc
    VERBATIM)
  bench_peer(grpc SOURCES ${grpc_sources}
                  LIBRARIES PkgConfig::GRPC protobuf::libprotobuf)
else()
  message(STATUS "Benchmark without gRPC: install libgrpc++-dev protobuf-compiler-grpc")
endif()

pkg_check_modules(CAPNP IMPORTED_TARGET capnp-rpc)
find_program(CAPNP_COMPILER capnp)
if(CAPNP_FOUND AND CAPNP_COMPILER)
  set(capnp_sources peer.capnp.c++ peer.capnp.h)
  list(TRANSFORM capnp_sources PREPEND ${generated}/)
  add_custom_command(
    OUTPUT ${capnp_sources}
    COMMAND ${CAPNP_COMPILER} compile --src-prefix=${peers} -oc++:${generated}
            ${peers}/peer.capnp
    DEPENDS ${peers}/peer.capnp
    VERBATIM)
  bench_peer(capnp SOURCES ${capnp_sources} LIBRARIES PkgConfig::CAPNP)
  # The generated base of a server is deleted through its owner, never by its destructor.
  set_source_files_properties(server/capnp.cpp PROPERTIES
    COMPILE_OPTIONS -Wno-non-virtual-dtor)
else()
  message(STATUS "Benchmark without Cap'n Proto: install libcapnp-dev capnproto")
endif()

pkg_check_modules(THRIFT IMPORTED_TARGET thrift)
find_program(THRIFT_COMPILER thrift)
if(THRIFT_FOUND AND THRIFT_COMPILER)
  set(thrift_sources Echo.cpp Echo.h peer_types.cpp peer_types.h)
  list(TRANSFORM thrift_sources PREPEND ${generated}/)
  add_custom_command(
    OUTPUT ${thrift_sources}
    COMMAND ${THRIFT_COMPILER} --gen cpp:no_skeleton -out ${generated}
            ${peers}/peer.thrift
    DEPENDS ${peers}/peer.thrift
    VERBATIM)
  bench_peer(thrift SOURCES ${thrift_sources} LIBRARIES PkgConfig::THRIFT)
else()
  message(STATUS "Benchmark without Thrift: install libthrift-dev thrift-compiler")
endif()

pkg_check_modules(RAPIDJSON IMPORTED_TARGET RapidJSON)
if(RAPIDJSON_FOUND)
  bench_peer(json SOURCES client/curl_post.cpp peers/json_value.cpp
                  LIBRARIES bench_common PkgConfig::RAPIDJSON CURL::libcurl)
else()
  message(STATUS "Benchmark without JSON: install rapidjson-dev")
endif()
