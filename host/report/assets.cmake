# SPDX-License-Identifier: Apache-2.0

# Makes assets.cpp from the style sheets and the script of pages, with the hashes by which the
# Content-Security-Policy of a page knows them.

# report_base64(HEX VARIABLE): sets the variable to the base64 form of a SHA-256 in hexadecimal digits.
function(report_base64 hex variable)
  set(alphabet "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/")
  set(text "")
  string(APPEND hex "00")  # to a multiple of 3 bytes
  foreach(start RANGE 0 60 6)
    string(SUBSTRING "${hex}" ${start} 6 digits)
    foreach(shift 18 12 6 0)
      math(EXPR place "(0x${digits} >> ${shift}) & 63")
      string(SUBSTRING "${alphabet}" ${place} 1 letter)
      string(APPEND text "${letter}")
    endforeach()
  endforeach()
  string(SUBSTRING "${text}" 0 43 text)
  set(${variable} "${text}=" PARENT_SCOPE)
endfunction()

foreach(file drawing.css page.css page.js)
  string(REPLACE "." "_" name ${file})
  set(path ${CMAKE_CURRENT_LIST_DIR}/${file})
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${path})
  file(READ ${path} ${name})
  file(SHA256 ${path} hash)
  report_base64(${hash} ${name}_hash)
endforeach()
set(report_assets ${CMAKE_CURRENT_BINARY_DIR}/report/assets.cpp)
configure_file(${CMAKE_CURRENT_LIST_DIR}/assets.cpp.in ${report_assets} @ONLY)
