# SPDX-License-Identifier: GPL-3.0-or-later
# Restricts which headers a room can include. The headers of each target are reached through a separate folder, and only
# targets that may use them get that folder as an include path.

set(LUMETWIN_HEADERS "${CMAKE_BINARY_DIR}/headers")

# lumetwin_show(TARGET target KIND kind PATH path): lets code that uses the target include the headers below `path` as
# "path/…", and no other headers.
function(lumetwin_show)
  cmake_parse_arguments(PARSE_ARGV 0 arg "" "TARGET;KIND;PATH" "")
  string(REPLACE "/" "-" name "${arg_PATH}")
  get_filename_component(parent "${LUMETWIN_HEADERS}/${name}/${arg_PATH}" DIRECTORY)
  file(MAKE_DIRECTORY "${parent}")
  file(CREATE_LINK "${CMAKE_SOURCE_DIR}/${arg_PATH}" "${LUMETWIN_HEADERS}/${name}/${arg_PATH}" SYMBOLIC)
  target_include_directories(${arg_TARGET} ${arg_KIND} "${LUMETWIN_HEADERS}/${name}")
endfunction()

# lumetwin_show_files(TARGET target KIND kind PATH path): the same, only for the headers directly in `path`.
function(lumetwin_show_files)
  cmake_parse_arguments(PARSE_ARGV 0 arg "" "TARGET;KIND;PATH" "")
  set(folder "${LUMETWIN_HEADERS}/${arg_PATH}-root")
  file(MAKE_DIRECTORY "${folder}/${arg_PATH}")
  file(GLOB present RELATIVE "${folder}/${arg_PATH}" "${folder}/${arg_PATH}/*.h")
  file(GLOB headers CONFIGURE_DEPENDS RELATIVE "${CMAKE_SOURCE_DIR}/${arg_PATH}" "${CMAKE_SOURCE_DIR}/${arg_PATH}/*.h")
  list(REMOVE_ITEM present ${headers})
  foreach(header IN LISTS present)
    file(REMOVE "${folder}/${arg_PATH}/${header}")
  endforeach()
  foreach(header IN LISTS headers)
    file(CREATE_LINK "${CMAKE_SOURCE_DIR}/${arg_PATH}/${header}" "${folder}/${arg_PATH}/${header}" SYMBOLIC)
  endforeach()
  target_include_directories(${arg_TARGET} ${arg_KIND} "${folder}")
endfunction()
