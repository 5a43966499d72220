# SPDX-License-Identifier: GPL-3.0-or-later
# Headers that many files need, read once. Only where several files are compiled as one, too: the other builds show when
# a file relies on what another one includes. Not with a compiler cache, which would keep few of these objects.

if(CMAKE_UNITY_BUILD AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(LUMETWIN_PRECOMPILE ON)
else()
  set(LUMETWIN_PRECOMPILE OFF)
endif()

# lumetwin_headers(NAME name PROGRAMS HEADERS … LIBRARIES … OPTIONS …): precompiles the headers, with what they need of
# the libraries, for libraries of ours, or with PROGRAMS for programs: their code is position independent in another way,
# and precompiled headers must be compiled as what uses them is.
function(lumetwin_headers)
  cmake_parse_arguments(PARSE_ARGV 0 arg "PROGRAMS" "NAME" "HEADERS;LIBRARIES;OPTIONS")
  if(NOT LUMETWIN_PRECOMPILE)
    return()
  endif()
  set(source "${CMAKE_CURRENT_BINARY_DIR}/${arg_NAME}.cpp")
  file(CONFIGURE OUTPUT "${source}" CONTENT "// Nothing but the precompiled headers.\n")
  add_library(${arg_NAME} OBJECT "${source}")
  target_precompile_headers(${arg_NAME} PRIVATE ${arg_HEADERS})
  target_link_libraries(${arg_NAME} PRIVATE lumetwin_options ${arg_LIBRARIES})
  target_compile_options(${arg_NAME} PRIVATE ${arg_OPTIONS})
  if(arg_PROGRAMS)
    set_target_properties(${arg_NAME} PROPERTIES POSITION_INDEPENDENT_CODE OFF)
    target_compile_options(${arg_NAME} PRIVATE -fPIE)
  endif()
endfunction()

# lumetwin_use_headers(target name): compiles the target with headers of lumetwin_headers.
function(lumetwin_use_headers target name)
  if(LUMETWIN_PRECOMPILE)
    target_precompile_headers(${target} REUSE_FROM ${name})
  endif()
endfunction()
