# SPDX-License-Identifier: Apache-2.0

# cpack runs this when the files of all packages are in place. Adds the files that Debian requires
# to each.
cmake_minimum_required(VERSION 3.25)
set(packages library ${CPACK_DEBIAN_LIBRARY_PACKAGE_NAME} plugin pciinfo-plugin tool pciinfo
  fleet pciinfo-fleet development libvtq-dev)

while(packages)
  list(POP_FRONT packages component package)
  set(root ${CPACK_TEMPORARY_DIRECTORY}/${component})
  if(NOT EXISTS ${root})
    continue()
  endif()
  set(documents ${root}/usr/share/doc/${package})
  file(MAKE_DIRECTORY ${documents})
  file(COPY_FILE ${CMAKE_CURRENT_LIST_DIR}/copyright ${documents}/copyright)
  file(COPY_FILE ${CPACK_WRITTEN_FILES}/changelog ${documents}/changelog.Debian)
  if(EXISTS ${documents}/CHANGELOG.md)
    file(RENAME ${documents}/CHANGELOG.md ${documents}/changelog)
  endif()
  file(GLOB compressed ${documents}/changelog* ${root}/usr/share/man/man*/*)
  foreach(file IN LISTS compressed)
    execute_process(COMMAND gzip -9nf ${file} COMMAND_ERROR_IS_FATAL ANY)
  endforeach()
  file(GLOB_RECURSE all LIST_DIRECTORIES true ${root}/usr/*)
  foreach(file IN LISTS all)
    if(IS_DIRECTORY ${file})
      file(CHMOD ${file} PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE
        GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
    elseif(NOT IS_SYMLINK ${file} AND NOT file MATCHES "/bin/")
      file(CHMOD ${file} PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
    endif()
  endforeach()
endwhile()
