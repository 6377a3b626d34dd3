# Helpers, so that a folder's CMakeLists.txt says only what the folder holds and what it stands on.

# Our executables that only borrow a precompiled header must be compiled with the same options as its owner,
# so there is one owner for the whole project.
function(mirelle_precompile target)
  if(NOT MIRELLE_PCH)
    return()
  endif()
  if(NOT TARGET mirelle_pch)
    file(WRITE "${PROJECT_BINARY_DIR}/pch.cpp" "// Owner of the precompiled header.\n")
    add_library(mirelle_pch OBJECT "${PROJECT_BINARY_DIR}/pch.cpp")
    target_link_libraries(mirelle_pch PRIVATE mirelle_options Qt6::Widgets)
    set_target_properties(mirelle_pch PROPERTIES AUTOMOC OFF POSITION_INDEPENDENT_CODE ON)
    target_precompile_headers(mirelle_pch PRIVATE
      <QtCore/QtCore> <QtGui/QImage> <QtGui/QPainter> <QtGui/QTransform> <QtGui/QUndoStack> <QtWidgets/QWidget>
      <algorithm> <cmath> <memory> <optional> <utility> <vector>)
  endif()
  target_precompile_headers(${target} REUSE_FROM mirelle_pch)
endfunction()

# mirelle_add_library(name SOURCES ... LINKS PUBLIC ... PRIVATE ...)
# A static library of one source folder. What it links says what it stands on; tools/check-layers holds it to that.
function(mirelle_add_library name)
  cmake_parse_arguments(arg "" "" "SOURCES;LINKS" ${ARGN})
  add_library(${name} STATIC ${arg_SOURCES})
  set_target_properties(${name} PROPERTIES POSITION_INDEPENDENT_CODE ON)
  target_link_libraries(${name} PRIVATE mirelle_options PUBLIC Qt6::Widgets)
  target_link_libraries(${name} ${arg_LINKS})
  mirelle_precompile(${name})
endfunction()

# mirelle_add_test(tst_name LIBS ... [SOURCES ...] [TIMEOUT seconds] [WINDOW_MANAGER])
# One QTest program from tst_name.cpp (and further sources), run on a display of its own with a home of its own.
function(mirelle_add_test name)
  cmake_parse_arguments(arg "WINDOW_MANAGER" "TIMEOUT" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${name}.cpp ${arg_SOURCES})
  set_target_properties(${name} PROPERTIES POSITION_INDEPENDENT_CODE ON)
  target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}/tests")
  target_link_libraries(${name} PRIVATE mirelle_options Qt6::Widgets Qt6::Test ${arg_LIBS})
  mirelle_precompile(${name})
  if(NOT arg_TIMEOUT)
    set(arg_TIMEOUT 120)
  endif()
  set(display_options)
  if(arg_WINDOW_MANAGER)
    set(display_options --window-manager)
  endif()
  add_test(NAME ${name}
    COMMAND "${PROJECT_SOURCE_DIR}/tools/with-display" ${display_options} $<TARGET_FILE:${name}>)
  set_tests_properties(${name} PROPERTIES TIMEOUT ${arg_TIMEOUT})
endfunction()

# mirelle_add_bench(bench_name LIBS ... [SOURCES ...])
# One Google Benchmark program from bench_name.cpp; built by the target `benchmarks`, never by default, never a test.
function(mirelle_add_bench name)
  cmake_parse_arguments(arg "" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} EXCLUDE_FROM_ALL ${name}.cpp ${arg_SOURCES})
  set_target_properties(${name} PROPERTIES POSITION_INDEPENDENT_CODE ON)
  target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}/tests")
  target_link_libraries(${name} PRIVATE mirelle_options Qt6::Widgets benchmark::benchmark ${arg_LIBS})
  mirelle_precompile(${name})
  if(NOT TARGET benchmarks)
    add_custom_target(benchmarks)
  endif()
  add_dependencies(benchmarks ${name})
endfunction()
