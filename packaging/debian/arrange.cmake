# SPDX-License-Identifier: GPL-3.0-or-later
# cpack runs this after installing into the package's tree and before packing it. It arranges documents and manual pages
# as the Debian policy requires (chapter 12). Other kinds of packages keep the tree of cmake --install.
if(NOT CPACK_GENERATOR STREQUAL "DEB")
  return()
endif()

set(here "${CMAKE_CURRENT_LIST_DIR}")
set(tree "${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr/share")
set(documents "${tree}/doc/lumetwin")

function(compress)
  execute_process(COMMAND gzip --best --no-name --force ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

# Every Debian system has the text of the licence; the copyright file refers to it.
file(REMOVE "${documents}/LICENSE")
configure_file("${here}/copyright" "${documents}/copyright" COPYONLY)
configure_file("${here}/changelog" "${documents}/changelog.Debian" COPYONLY)
file(RENAME "${documents}/CHANGELOG.md" "${documents}/changelog")
configure_file("${here}/lintian-overrides" "${tree}/lintian/overrides/lumetwin" COPYONLY)

file(GLOB pages "${tree}/man/man1/*.1")
compress("${documents}/changelog" "${documents}/changelog.Debian" ${pages})
