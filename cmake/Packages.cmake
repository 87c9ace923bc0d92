# SPDX-License-Identifier: Apache-2.0

# Debian packages: cpack -G DEB. Configure with -DCMAKE_INSTALL_PREFIX=/usr.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "The pciinfo authors <pciinfo@example.org>")
set(CPACK_PACKAGE_VENDOR "The pciinfo authors")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
# Debug information goes to packages of its own (PACKAGE-dbgsym); what remains is stripped.
foreach(component LIBRARY PLUGIN TOOL FLEET)
  set(CPACK_DEBIAN_${component}_DEBUGINFO_PACKAGE ON)
endforeach()
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_COMPONENTS_ALL library plugin tool development)
if(TARGET pciinfo-fleet)
  list(APPEND CPACK_COMPONENTS_ALL fleet)
endif()
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/lib)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/finish.cmake)

# What names the version is written here; finish.cmake finds it by CPACK_WRITTEN_FILES.
set(CPACK_WRITTEN_FILES ${PROJECT_BINARY_DIR}/packaging)
execute_process(COMMAND date --utc --rfc-email --date "${release_date} 12:00"
  OUTPUT_VARIABLE release_moment OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
foreach(file changelog shlibs)
  configure_file(${PROJECT_SOURCE_DIR}/packaging/${file}.in ${CPACK_WRITTEN_FILES}/${file} @ONLY)
endforeach()

# The packages go together: the plug-in's and the libraries' C++ interface has no lesser bond.
set(same "(= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")
set(framework "a hardware data-collection framework")

set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME libvtq${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
# The shlibs files: which package provides each library.
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA
  ${CPACK_WRITTEN_FILES}/shlibs ${PROJECT_SOURCE_DIR}/packaging/triggers)
set(CPACK_COMPONENT_LIBRARY_DESCRIPTION "libraries of ${framework}
 Plug-ins publish what they know of a machine as instances of CIM classes.
 The libraries hold values, classes and instances, load plug-ins, and give
 them a log, commands, files and the firmware's SMBIOS tables.")

set(CPACK_DEBIAN_PLUGIN_PACKAGE_NAME pciinfo-plugin)
set(CPACK_DEBIAN_PLUGIN_PACKAGE_SECTION admin)
set(CPACK_DEBIAN_PLUGIN_PACKAGE_DEPENDS "${CPACK_DEBIAN_LIBRARY_PACKAGE_NAME} ${same}")
set(CPACK_DEBIAN_PLUGIN_PACKAGE_RECOMMENDS pciutils)
set(CPACK_COMPONENT_PLUGIN_DESCRIPTION "PCI and slot inventory plug-ins of ${framework}
 Publishes a machine's PCI functions, bridges, system slots, the board, which
 function sits in which slot, and raw listings as instances of CIM classes. A
 second plug-in tells which slot each function is really in, and why.")

set(CPACK_DEBIAN_TOOL_PACKAGE_NAME pciinfo)
set(CPACK_DEBIAN_TOOL_PACKAGE_SECTION admin)
set(CPACK_DEBIAN_TOOL_PACKAGE_DEPENDS
  "${CPACK_DEBIAN_LIBRARY_PACKAGE_NAME} ${same}, pciinfo-plugin ${same}")
set(CPACK_COMPONENT_TOOL_DESCRIPTION "which PCI cards are in this server, and in which slots
 Shows PCI functions, system slots with the cards in them, and what is on the
 board, as tables and in formats for other programs. Saves captures of
 machines and shows them elsewhere.")

set(CPACK_DEBIAN_TOOL_PACKAGE_SUGGESTS pciinfo-fleet)

set(CPACK_DEBIAN_FLEET_PACKAGE_NAME pciinfo-fleet)
set(CPACK_DEBIAN_FLEET_PACKAGE_SECTION admin)
set(CPACK_DEBIAN_FLEET_PACKAGE_DEPENDS
  "pciinfo ${same}, ${CPACK_DEBIAN_LIBRARY_PACKAGE_NAME} ${same}")
set(CPACK_COMPONENT_FLEET_DESCRIPTION "PCI cards and slots of many servers in one database
 Adds to pciinfo what stores machines in an SQLite or PostgreSQL database, with
 the history of their cards, slots and firmware, and what answers questions
 about all of them.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libvtq-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${CPACK_DEBIAN_LIBRARY_PACKAGE_NAME} ${same}")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS pciinfo)
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "files to build plug-ins of ${framework}
 Headers, a CMake package (find_package(vtq)) and an example of a plug-in that
 publishes its own class.")
include(CPack)
