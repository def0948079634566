# One function per kind of target. Flags and conventions stand here only.

add_library(cyberduck_flags INTERFACE)
target_compile_options(cyberduck_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wold-style-cast -Wcast-align
  -Woverloaded-virtual -Wconversion -Wformat=2 -Wundef)
if(CYBERDUCK_WARNINGS_AS_ERRORS)
  target_compile_options(cyberduck_flags INTERFACE -Werror)
endif()
if(CYBERDUCK_SANITIZERS)
  target_compile_options(cyberduck_flags INTERFACE
    -fsanitize=${CYBERDUCK_SANITIZERS} -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
  target_link_options(cyberduck_flags INTERFACE -fsanitize=${CYBERDUCK_SANITIZERS})
endif()
# Conversions to narrow texts must name an encoding. Qt's keyword macros collide with Objective-C++.
# Its foreach macro and Java-style iterators are not used.
target_compile_definitions(cyberduck_flags INTERFACE
  QT_NO_CAST_TO_ASCII QT_NO_FOREACH QT_NO_KEYWORDS QT_NO_JAVA_STYLE_ITERATORS)

# add_view(TARGET FOLDER): TARGET, and targets that link it, may include "FOLDER/…". The view is a
# folder that holds one link, to FOLDER, so that no other folder becomes visible.
function(add_view target folder)
  set(view ${CMAKE_BINARY_DIR}/views/${folder})
  file(MAKE_DIRECTORY ${view})
  file(CREATE_LINK ${CMAKE_SOURCE_DIR}/${folder} ${view}/${folder} SYMBOLIC)
  get_target_property(type ${target} TYPE)
  if(type STREQUAL "INTERFACE_LIBRARY")
    target_include_directories(${target} INTERFACE ${view})
  else()
    target_include_directories(${target} PUBLIC ${view})
  endif()
endfunction()

# add_room(NAME [DEPENDS rooms...] [QT modules...] [LIBRARIES libraries...] SOURCES files...): makes
# the folder NAME the library cyberduck_NAME. It sees the headers of the rooms that it depends on,
# and of those below them. An include of any other room does not build.
function(add_room name)
  cmake_parse_arguments(room "" "" "DEPENDS;QT;LIBRARIES;SOURCES" ${ARGN})
  set(target cyberduck_${name})
  set(below ${room_DEPENDS})
  list(TRANSFORM below PREPEND cyberduck_)
  set(qt Core ${room_QT})
  list(TRANSFORM qt PREPEND Qt5::)
  if("${room_SOURCES}" MATCHES "\\.(cpp|mm)(;|$)")
    add_library(${target} STATIC ${room_SOURCES})
    target_link_libraries(${target} PUBLIC ${below} ${qt} PRIVATE ${room_LIBRARIES} cyberduck_flags)
  else()
    add_library(${target} INTERFACE ${room_SOURCES})
    target_link_libraries(${target} INTERFACE ${below} ${qt})
  endif()
  add_view(${target} ${name})
  set_property(GLOBAL APPEND PROPERTY cyberduck_rooms ${name})
  string(REPLACE ";" " " depends "${room_DEPENDS}")
  set_property(GLOBAL APPEND_STRING PROPERTY cyberduck_room_order "${name}: ${depends}\n")
endfunction()

# cyberduck_core is all rooms, for tests and benchmarks. Also writes which room may use which into
# views/order.txt.
function(add_core)
  get_property(rooms GLOBAL PROPERTY cyberduck_rooms)
  list(TRANSFORM rooms PREPEND cyberduck_)
  add_library(cyberduck_core INTERFACE)
  target_link_libraries(cyberduck_core INTERFACE ${rooms})
  if(CYBERDUCK_SANITIZERS)
    target_link_options(cyberduck_core INTERFACE -fsanitize=${CYBERDUCK_SANITIZERS})
  endif()
  get_property(order GLOBAL PROPERTY cyberduck_room_order)
  file(WRITE ${CMAKE_BINARY_DIR}/views/order.txt "${order}")
endfunction()

# add_plugin_test(FOLDER/NAME [sources...]): one test program from FOLDER/NAME.cpp. CTest runs it.
function(add_plugin_test path)
  get_filename_component(name ${path} NAME)
  add_executable(${name} ${path}.cpp ${ARGN})
  target_link_libraries(${name} PRIVATE cyberduck_core cyberduck_test_fixtures cyberduck_flags)
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES
    ENVIRONMENT "LC_ALL=C.UTF-8" TIMEOUT 300)
endfunction()

# add_plugin_benchmark(NAME): one Google Benchmark program from NAME.cpp.
function(add_plugin_benchmark name)
  add_executable(${name} ${name}.cpp ${ARGN})
  target_link_libraries(${name} PRIVATE
    cyberduck_core cyberduck_samples cyberduck_flags benchmark::benchmark)
endfunction()

# add_extractor_fuzzer(NAME [sources...]): one libFuzzer program from NAME_fuzzer.cpp. Its seeds are
# in fuzz/corpus/NAME.
function(add_extractor_fuzzer name)
  add_executable(${name}_fuzzer ${name}_fuzzer.cpp ${ARGN})
  target_link_libraries(${name}_fuzzer PRIVATE cyberduck_core cyberduck_flags)
  target_link_options(${name}_fuzzer PRIVATE -fsanitize=fuzzer)
endfunction()
