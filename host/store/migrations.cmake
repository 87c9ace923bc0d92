# SPDX-License-Identifier: Apache-2.0

# Makes migrations.cpp from the files of migrations/. The number in the name of a file is the version
# of the schema that it makes, so none may be missing.
file(GLOB migrations CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/migrations/*.sql)
set(migration_texts "")
set(number 0)
foreach(file ${migrations})
  math(EXPR number "${number} + 1")
  cmake_path(GET file FILENAME name)
  if(NOT name MATCHES "^0*${number}_")
    message(FATAL_ERROR "migration ${number} of the database schema is missing: found ${name}")
  endif()
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
  file(READ ${file} text)
  string(APPEND migration_texts "      R\"sql(${text})sql\",\n")
endforeach()
set(migrations_source ${CMAKE_CURRENT_BINARY_DIR}/store/migrations.cpp)
configure_file(${CMAKE_CURRENT_LIST_DIR}/migrations.cpp.in ${migrations_source} @ONLY)
