# Where plug-ins are installed, and what is installed beside programs and libraries. Each part of the
# installation is a component: library, plugin, tool, development.

# A folder of its own for libraries that nobody links: the program's extras, and plug-ins in plugins/
# with their class files. The build folder has the same below lib/.
set(PCIINFO_PLUGIN_FOLDER ${CMAKE_INSTALL_LIBDIR}/pciinfo)
set(PCIINFO_BUILT_PLUGINS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/pciinfo/plugins)
file(MAKE_DIRECTORY ${PCIINFO_BUILT_PLUGINS})

# Below /usr the system's own search path finds the libraries.
if(CMAKE_INSTALL_PREFIX STREQUAL "/usr")
  set(CMAKE_SKIP_INSTALL_RPATH ON)
endif()

# Where a target looks for its libraries: PLACES fit the build tree and the installation alike. Left
# to itself, CMake links with a path of its own for the build tree and adds an empty one, which to
# the loader is the current directory, whoever wrote what is in it.
function(pciinfo_find_libraries target)
  set_target_properties(${target} PROPERTIES INSTALL_RPATH "${ARGN}")
  if(NOT CMAKE_SKIP_INSTALL_RPATH)
    set_target_properties(${target} PROPERTIES BUILD_WITH_INSTALL_RPATH ON)
  endif()
endfunction()

# The installed pages link to installed pages only; the test "links.installed" checks it.
set(user_pages captures.md class-files.md diff.md findings.md formats.md pciinfo.schema.json)
list(TRANSFORM user_pages PREPEND docs/)
install(FILES ${user_pages} CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT tool)

# Laid out as here, so that the links between them hold in both places.
set(development_pages ${CMAKE_INSTALL_DATADIR}/doc/libvtq-dev)
install(FILES framework/README.md DESTINATION ${development_pages}/framework COMPONENT development)
install(FILES docs/class-files.md DESTINATION ${development_pages}/docs COMPONENT development)
install(DIRECTORY examples DESTINATION ${development_pages} COMPONENT development
  PATTERN machines EXCLUDE)
