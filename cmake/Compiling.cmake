# SPDX-License-Identifier: Apache-2.0

# What shortens the build. Most of its time goes into library templates, which every source file
# would make anew.

# pciinfo_compile_by_room(TARGET SOURCE...): compiles those sources of the target that stand in one
# folder as one source. Names in unnamed namespaces must be unique in a folder.
function(pciinfo_compile_by_room target)
  if(NOT PCIINFO_UNITY)
    return()
  endif()
  foreach(source IN LISTS ARGN)
    get_filename_component(folder ${source} DIRECTORY)
    get_filename_component(room ${folder} NAME)
    set_source_files_properties(${source} PROPERTIES UNITY_GROUP ${room})
  endforeach()
  set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_MODE GROUP)
endfunction()
