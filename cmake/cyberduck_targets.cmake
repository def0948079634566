# One function per kind of target, so that flags and conventions stand in one place.

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
# Qt's rvalue conversions and foreach macro are not used; implicit narrow texts would hide an
# encoding decision. No Qt keyword macros: they collide with Objective-C++.
target_compile_definitions(cyberduck_flags INTERFACE
  QT_NO_CAST_TO_ASCII QT_NO_FOREACH QT_NO_KEYWORDS QT_NO_JAVA_STYLE_ITERATORS)

# All code of the plug-in but the exported factory; linked by the plug-in, tests and benchmarks.
add_library(cyberduck_core STATIC)
set_target_properties(cyberduck_core PROPERTIES AUTOMOC ON)
target_include_directories(cyberduck_core PUBLIC ${CMAKE_SOURCE_DIR})
target_link_libraries(cyberduck_core PUBLIC Qt5::Core Qt5::Sql Qt5::Widgets PRIVATE cyberduck_flags)
if(CYBERDUCK_SANITIZERS)
  target_link_options(cyberduck_core PUBLIC -fsanitize=${CYBERDUCK_SANITIZERS})
endif()

# add_plugin_test(NAME [sources...]): one test program from NAME.cpp, run by CTest without a display.
function(add_plugin_test name)
  add_executable(${name} ${name}.cpp ${ARGN})
  target_link_libraries(${name} PRIVATE cyberduck_core cyberduck_test_support cyberduck_flags)
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES
    ENVIRONMENT "LC_ALL=C.UTF-8" TIMEOUT 300)
endfunction()

# add_plugin_benchmark(NAME): one Google Benchmark program from NAME.cpp.
function(add_plugin_benchmark name)
  add_executable(${name} ${name}.cpp ${ARGN})
  target_link_libraries(${name} PRIVATE cyberduck_core cyberduck_flags benchmark::benchmark)
endfunction()

# add_extractor_fuzzer(NAME [sources...]): one libFuzzer program from NAME_fuzzer.cpp; its seeds lie
# in corpus/NAME.
function(add_extractor_fuzzer name)
  add_executable(${name}_fuzzer ${name}_fuzzer.cpp ${ARGN})
  target_link_libraries(${name}_fuzzer PRIVATE cyberduck_core cyberduck_flags)
  target_link_options(${name}_fuzzer PRIVATE -fsanitize=fuzzer)
endfunction()
