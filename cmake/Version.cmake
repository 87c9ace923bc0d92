# SPDX-License-Identifier: Apache-2.0

# The project's version stands in one place, the call of project(). The changelog must have an entry
# for it, which tells the date.
set(changelog ${PROJECT_SOURCE_DIR}/CHANGELOG.md)
file(STRINGS ${changelog} release REGEX "^## \\[${PROJECT_VERSION}\\] - ")
string(REGEX REPLACE "^.* - " "" release_date "${release}")
if(NOT release_date)
  message(FATAL_ERROR "CHANGELOG.md has no entry for version ${PROJECT_VERSION}")
endif()
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${changelog})
