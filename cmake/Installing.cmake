# SPDX-License-Identifier: Apache-2.0

# Where plug-ins are installed, and which files are installed besides programs and libraries. Each
# part of the installation is a component: library, plugin, tool, development.

# A separate directory for libraries that are loaded by path and never linked: the program's extras,
# and plug-ins in plugins/ with their class files. The build directory has the same below lib/.
set(PCIINFO_PLUGIN_DIRECTORY ${CMAKE_INSTALL_LIBDIR}/pciinfo)
set(PCIINFO_BUILT_PLUGINS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/pciinfo/plugins)
file(MAKE_DIRECTORY ${PCIINFO_BUILT_PLUGINS})

# Below /usr the system's search path finds the libraries.
if(CMAKE_INSTALL_PREFIX STREQUAL "/usr")
  set(CMAKE_SKIP_INSTALL_RPATH ON)
endif()

# Sets where a target finds its libraries. PLACES are valid in the build tree and in the
# installation. By default, CMake would add an empty path, which the loader reads as the current
# directory; anybody could put a library there.
function(pciinfo_find_libraries target)
  set_target_properties(${target} PROPERTIES INSTALL_RPATH "${ARGN}")
  if(NOT CMAKE_SKIP_INSTALL_RPATH)
    set_target_properties(${target} PROPERTIES BUILD_WITH_INSTALL_RPATH ON)
  endif()
endfunction()

# The installed pages link to installed pages only; the test "links.installed" checks it.
set(user_pages ansible.md captures.md class-files.md diff.md findings.md fleet-database.md fleet-database.svg
  fleet-scale.md fleet.md formats.md metrics.md pciinfo.schema.json report.md)
list(TRANSFORM user_pages PREPEND docs/)
install(FILES ${user_pages} CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT tool)

file(GLOB monitoring_examples CONFIGURE_DEPENDS packaging/monitoring/*)
list(FILTER monitoring_examples EXCLUDE REGEX README)
install(FILES ${monitoring_examples} DESTINATION ${CMAKE_INSTALL_DOCDIR}/monitoring COMPONENT tool)
install(DIRECTORY packaging/clickhouse DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT tool
  USE_SOURCE_PERMISSIONS PATTERN README.md EXCLUDE PATTERN __pycache__ EXCLUDE)
install(DIRECTORY packaging/ansible DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT tool
  PATTERN README.md EXCLUDE)

# Laid out as here, so that the links between them hold in both places.
set(development_pages ${CMAKE_INSTALL_DATADIR}/doc/libvtq-dev)
install(FILES framework/README.md DESTINATION ${development_pages}/framework COMPONENT development)
install(FILES docs/class-files.md DESTINATION ${development_pages}/docs COMPONENT development)
install(DIRECTORY examples DESTINATION ${development_pages} COMPONENT development
  PATTERN machines EXCLUDE)
