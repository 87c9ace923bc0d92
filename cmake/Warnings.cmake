# Warnings, sanitizers, coverage and symbol binding that every target of the project is compiled with.
add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Wshadow)
if(PCIINFO_WERROR)
  add_compile_options(-Werror)
endif()
if(PCIINFO_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
  # g++ sees uninitialised variables in instrumented library templates (<regex>) that are none.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    add_compile_options(-Wno-maybe-uninitialized)
  endif()
endif()
# Counts which lines and branches run; tools/coverage reads the counts. clang's counts follow the
# source's conditions, where g++'s follow the machine's jumps, hidden ones of exceptions included.
if(PCIINFO_COVERAGE)
  if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    message(FATAL_ERROR "PCIINFO_COVERAGE needs clang: cmake --preset asan-clang")
  endif()
  add_compile_options(
    -fprofile-instr-generate=${PROJECT_BINARY_DIR}/profiles/%m.profraw -fcoverage-mapping)
  add_link_options(-fprofile-instr-generate)
endif()
# A library with unique symbols is never unloaded.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  add_compile_options(-fno-gnu-unique)
endif()
# Debian 12's valgrind does not read the newer form that clang writes by itself.
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  add_compile_options(-gdwarf-4)
endif()
