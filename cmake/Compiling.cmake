# SPDX-License-Identifier: Apache-2.0

# What shortens the build. Most of its time goes into library templates, which every source file
# would make anew.

# pciinfo_compile_by_room(TARGET...): compiles those sources of a target that stand in one directory as
# one source. Names in unnamed namespaces must be unique in a directory.
function(pciinfo_compile_by_room)
  if(NOT PCIINFO_UNITY)
    return()
  endif()
  foreach(target IN LISTS ARGN)
    get_target_property(sources ${target} SOURCES)
    foreach(source IN LISTS sources)
      cmake_path(ABSOLUTE_PATH source OUTPUT_VARIABLE path)
      cmake_path(GET path PARENT_PATH directory)
      cmake_path(GET directory FILENAME room)
      set_source_files_properties(${source} PROPERTIES UNITY_GROUP ${room})
    endforeach()
    set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_MODE GROUP)
  endforeach()
endfunction()

# pciinfo_compile_together(NAME ROOM...): compiles rooms of the current directory as one source, after
# pciinfo_compile_by_room. Names in their unnamed namespaces must differ too.
function(pciinfo_compile_together name)
  if(NOT PCIINFO_UNITY)
    return()
  endif()
  foreach(room IN LISTS ARGN)
    file(GLOB sources ${CMAKE_CURRENT_SOURCE_DIR}/${room}/*.cpp)
    set_source_files_properties(${sources} PROPERTIES UNITY_GROUP ${name})
  endforeach()
endfunction()

# pciinfo_compile_quickly(TARGET...): for what is compiled often and runs little, as tests do. The checked
# versions of the C library's functions need optimised code. Nobody reads the coverage of tests.
function(pciinfo_compile_quickly)
  foreach(target IN LISTS ARGN)
    target_compile_options(${target} PRIVATE -O0 -U_FORTIFY_SOURCE)
    if(PCIINFO_COVERAGE)
      target_compile_options(${target} PRIVATE -fno-profile-instr-generate -fno-coverage-mapping)
    endif()
  endforeach()
endfunction()

# pciinfo_count_runs(TARGET...): for programs that consist of such sources alone, after that. What writes the
# counts cannot be linked where nothing is counted.
function(pciinfo_count_runs)
  if(PCIINFO_COVERAGE)
    foreach(target IN LISTS ARGN)
      target_compile_options(${target} PRIVATE -fprofile-instr-generate)
    endforeach()
  endif()
endfunction()
