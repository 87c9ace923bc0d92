# SPDX-License-Identifier: Apache-2.0

# Compiler options of every target: warnings, sanitizers, coverage, symbol binding.
add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Wshadow)
if(PCIINFO_WERROR)
  add_compile_options(-Werror)
endif()
if(PCIINFO_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
  # g++ warns wrongly of uninitialised variables in instrumented library templates (<regex>).
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    add_compile_options(-Wno-maybe-uninitialized)
  endif()
endif()
# Counts which lines and branches run; tools/coverage reads the counts. Uses clang, because it
# counts the conditions in the source; g++ counts jumps in the machine code, including those of
# exceptions.
if(PCIINFO_COVERAGE)
  if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    message(FATAL_ERROR "PCIINFO_COVERAGE needs clang: cmake --preset asan-clang")
  endif()
  add_compile_options(
    -fprofile-instr-generate=${PROJECT_BINARY_DIR}/profiles/%m.profraw -fcoverage-mapping)
  add_link_options(-fprofile-instr-generate)
endif()
# The loader never unloads a library with unique symbols.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  add_compile_options(-fno-gnu-unique)
endif()
# The valgrind of Debian 12 cannot read the newer DWARF version, which is clang's default.
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  add_compile_options(-gdwarf-4)
endif()
