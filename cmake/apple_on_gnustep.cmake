# Toolchain for building the Apple platform without a Mac: clang, because g++'s Objective-C++ cannot
# read Qt's headers, with gcc's Objective-C runtime, because GNUstep is built for it.
find_program(clang_with_objcxx clang++ REQUIRED)
find_program(clang_for_c clang REQUIRED)
find_program(gcc_with_objc gcc REQUIRED)
# One compiler for all: sanitizers of two do not mix.
set(CMAKE_C_COMPILER ${clang_for_c})
set(CMAKE_CXX_COMPILER ${clang_with_objcxx})
set(CMAKE_OBJCXX_COMPILER ${clang_with_objcxx})

execute_process(COMMAND ${gcc_with_objc} -print-file-name=include
  OUTPUT_VARIABLE gcc_include_folder OUTPUT_STRIP_TRAILING_WHITESPACE)
# Last in the order of search: that folder also holds gcc's own intrinsics.
set(CMAKE_OBJCXX_FLAGS_INIT
  "-fobjc-runtime=gcc -fobjc-exceptions -fconstant-string-class=NSConstantString -idirafter ${gcc_include_folder}")
