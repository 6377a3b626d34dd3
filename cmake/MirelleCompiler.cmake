# Language level, warnings, sanitizers, ccache: what every target of ours is compiled with.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_AUTOMOC ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")

find_program(MIRELLE_CCACHE ccache)
if(MIRELLE_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  # The sloppiness is what lets ccache work with a precompiled header.
  set(CMAKE_CXX_COMPILER_LAUNCHER "${CMAKE_COMMAND}" -E env
      CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
      "CCACHE_BASEDIR=${PROJECT_SOURCE_DIR}" "${MIRELLE_CCACHE}")
endif()

add_library(mirelle_options INTERFACE)
target_include_directories(mirelle_options INTERFACE "${PROJECT_SOURCE_DIR}/source")
target_compile_definitions(mirelle_options INTERFACE
  QT_NO_CAST_TO_ASCII
  QT_NO_URL_CAST_FROM_STRING
  QT_MESSAGELOGCONTEXT
  QT_DISABLE_DEPRECATED_BEFORE=0x060400)
target_compile_options(mirelle_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align -Wunused
  -Wformat=2 -Wimplicit-fallthrough
  $<$<BOOL:${MIRELLE_WERROR}>:-Werror>)
# What ccache needs to know a precompiled header again.
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  target_compile_options(mirelle_options INTERFACE "SHELL:-Xclang -fno-pch-timestamp")
else()
  target_compile_options(mirelle_options INTERFACE -fpch-preprocess)
endif()
if(MIRELLE_ASSERTIONS)
  target_compile_definitions(mirelle_options INTERFACE QT_FORCE_ASSERTS _GLIBCXX_ASSERTIONS)
endif()
if(MIRELLE_SANITIZE)
  target_compile_options(mirelle_options INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  target_link_options(mirelle_options INTERFACE -fsanitize=address,undefined)
endif()
if(MIRELLE_FUZZ)
  if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    message(FATAL_ERROR "MIRELLE_FUZZ needs clang: use the preset `fuzz`")
  endif()
  # Everything is instrumented, only the targets themselves are linked with libFuzzer and its main().
  target_compile_options(mirelle_options INTERFACE
    -fsanitize=address,undefined,float-cast-overflow,fuzzer-no-link -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(mirelle_options INTERFACE -fsanitize=address,undefined,float-cast-overflow)
endif()
