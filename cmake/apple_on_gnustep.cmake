# Toolchain that builds the Apple platform without a Mac. It uses clang, because g++ cannot read
# Qt's headers as Objective-C++. It uses gcc's Objective-C runtime, because GNUstep is built for it.
find_program(clang_with_objcxx clang++ REQUIRED)
find_program(clang_for_c clang REQUIRED)
find_program(gcc_with_objc gcc REQUIRED)
# One compiler for all languages: the sanitizers of two compilers do not mix.
set(CMAKE_C_COMPILER ${clang_for_c})
set(CMAKE_CXX_COMPILER ${clang_with_objcxx})
set(CMAKE_OBJCXX_COMPILER ${clang_with_objcxx})

execute_process(COMMAND ${gcc_with_objc} -print-file-name=include
  OUTPUT_VARIABLE gcc_include_folder OUTPUT_STRIP_TRAILING_WHITESPACE)
# Searched last, because that folder also holds gcc's own intrinsics.
set(CMAKE_OBJCXX_FLAGS_INIT
  "-fobjc-runtime=gcc -fobjc-exceptions -fconstant-string-class=NSConstantString -idirafter ${gcc_include_folder}")
