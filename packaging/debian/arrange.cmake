# SPDX-License-Identifier: GPL-3.0-or-later
# Run by cpack between installing into the package's tree and packing it: documents and manual pages as the Debian
# policy wants them (chapter 12). Other kinds of packages keep what cmake --install makes.
if(NOT CPACK_GENERATOR STREQUAL "DEB")
  return()
endif()

set(here "${CMAKE_CURRENT_LIST_DIR}")
set(tree "${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr/share")
set(documents "${tree}/doc/lumetwin")

function(compress)
  execute_process(COMMAND gzip --best --no-name --force ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

# The licence's text is part of every Debian system; the copyright file names it.
file(REMOVE "${documents}/LICENSE")
configure_file("${here}/copyright" "${documents}/copyright" COPYONLY)
configure_file("${here}/changelog" "${documents}/changelog.Debian" COPYONLY)
file(RENAME "${documents}/CHANGELOG.md" "${documents}/changelog")
configure_file("${here}/lintian-overrides" "${tree}/lintian/overrides/lumetwin" COPYONLY)

file(GLOB pages "${tree}/man/man1/*.1")
compress("${documents}/changelog" "${documents}/changelog.Debian" ${pages})
