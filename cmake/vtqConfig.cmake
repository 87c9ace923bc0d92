# SPDX-License-Identifier: Apache-2.0

# The framework, for authors of plug-ins: vtq::framework (headers), vtq::base and vtq::core.
include(${CMAKE_CURRENT_LIST_DIR}/vtqTargets.cmake)

# vtq_add_plugin(NAME SOURCE...): the plug-in NAME.pi.so, with NAME.classes.json beside it if the source
# directory has one: the declarations of its classes.
function(vtq_add_plugin name)
  add_library(${name} MODULE ${ARGN})
  target_link_libraries(${name} PRIVATE vtq::core vtq::base)
  set_target_properties(${name} PROPERTIES
    PREFIX "" SUFFIX ".pi.so" CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
  # The loader never unloads a library with unique symbols.
  target_compile_options(${name} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>)
  if(EXISTS ${CMAKE_CURRENT_SOURCE_DIR}/${name}.classes.json)
    configure_file(${name}.classes.json ${name}.classes.json COPYONLY)
  endif()
endfunction()
