# SPDX-License-Identifier: Apache-2.0

# What makes a mistake in memory end the program instead of serving an attacker. The program reads
# other people's files, often as root. tests/library/hardening_test.cpp reads all of it from the
# built files.
add_compile_options(-fstack-protector-strong -fstack-clash-protection)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64)$")
  add_compile_options(-fcf-protection)
endif()
# The checked versions of the C library's functions are made for optimised code, and the sanitizers
# replace the same functions.
if(NOT PCIINFO_SANITIZE AND NOT PCIINFO_FUZZ)
  set(checked_functions -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3)
  add_compile_options("$<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:${checked_functions}>")
endif()
# The loader resolves all symbols at the start and makes its tables read-only.
add_link_options(LINKER:-z,relro LINKER:-z,now LINKER:-z,noexecstack)
# Programs are loaded at random addresses, as libraries are.
include(CheckPIESupported)
check_pie_supported(LANGUAGES CXX)
