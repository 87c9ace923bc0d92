# SPDX-License-Identifier: Apache-2.0

# The module of `pciinfo store` and `pciinfo fleet`, the only code that needs the libraries of
# databases. Without them the rest is built; the two commands then say what to install.
find_path(SOCI_INCLUDE_DIR soci/soci.h)
find_path(BOOST_INCLUDE_DIR boost/version.hpp)  # SOCI's headers include Boost's
find_library(SOCI_CORE_LIBRARY soci_core)
find_library(SOCI_SQLITE3_LIBRARY soci_sqlite3)
find_library(SOCI_POSTGRESQL_LIBRARY soci_postgresql)
mark_as_advanced(SOCI_INCLUDE_DIR BOOST_INCLUDE_DIR SOCI_CORE_LIBRARY SOCI_SQLITE3_LIBRARY
  SOCI_POSTGRESQL_LIBRARY)
find_package(PostgreSQL QUIET)
find_package(SQLite3 QUIET)
find_package(OpenSSL QUIET COMPONENTS Crypto)
if(NOT (SOCI_INCLUDE_DIR AND BOOST_INCLUDE_DIR AND SOCI_CORE_LIBRARY AND SOCI_SQLITE3_LIBRARY
    AND SOCI_POSTGRESQL_LIBRARY AND PostgreSQL_FOUND AND SQLite3_FOUND AND OpenSSL_FOUND))
  message(STATUS "SOCI is not installed: without `pciinfo store` and `pciinfo fleet` "
    "(packages libsoci-dev, libboost-dev, libsqlite3-dev, libpq-dev and libssl-dev)")
  return()
endif()

include(store/migrations.cmake)
file(GLOB fleet_sources CONFIGURE_DEPENDS store/*.cpp fleet/*_reader.cpp)
list(FILTER fleet_sources EXCLUDE REGEX "/(fleet_module_loader|target)\\.cpp$")
add_library(pciinfo_fleet OBJECT ${fleet_sources} ${migrations_source})
pciinfo_compile_by_room(pciinfo_fleet)
target_include_directories(pciinfo_fleet SYSTEM PUBLIC
  ${SOCI_INCLUDE_DIR} ${SOCI_INCLUDE_DIR}/soci ${BOOST_INCLUDE_DIR}
  ${PostgreSQL_INCLUDE_DIRS} ${SQLite3_INCLUDE_DIRS})
target_link_libraries(pciinfo_fleet PUBLIC
  pciinfo_host fmt::fmt ${SOCI_SQLITE3_LIBRARY} ${SOCI_POSTGRESQL_LIBRARY} ${SOCI_CORE_LIBRARY}
  SQLite::SQLite3 PostgreSQL::PostgreSQL OpenSSL::Crypto)
# The check of the types of objects needs type information that SOCI does not export.
if(PCIINFO_SANITIZE)
  target_compile_options(pciinfo_fleet PUBLIC -fno-sanitize=vptr)
endif()

add_library(pciinfo-fleet MODULE)
target_link_libraries(pciinfo-fleet PRIVATE pciinfo_fleet pciinfo_extras_loader)
# With clang, only the program contains the sanitizers.
if(NOT PCIINFO_SANITIZE)
  target_link_options(pciinfo-fleet PRIVATE -Wl,--no-undefined)
endif()
pciinfo_find_libraries(pciinfo-fleet "$ORIGIN/.." "$ORIGIN")
install(TARGETS pciinfo-fleet LIBRARY DESTINATION ${PCIINFO_PLUGIN_DIRECTORY} COMPONENT fleet)
