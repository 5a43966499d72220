# SPDX-License-Identifier: GPL-3.0-or-later
# The libraries for decoding and encoding, as imported targets: lumetwin::ffmpeg, lumetwin::x265, lumetwin::heif. By
# default they come from the private stack that scripts/stack.sh builds. Packagers may use the system's libraries
# instead.

option(LUMETWIN_SYSTEM_MEDIA "Take FFmpeg (7.1 or later), x265 (4.1 or later, with multiview) and libheif (1.19 or later) from the system" OFF)

find_package(PkgConfig REQUIRED)

if(NOT LUMETWIN_SYSTEM_MEDIA)
  if(NOT LUMETWIN_STACK)
    # The folder of scripts/stack.sh. Its name contains a hash of that script and of the patches.
    file(GLOB patches CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/scripts/patches/*.patch")
    set(parts "${CMAKE_SOURCE_DIR}/scripts/stack.sh" ${patches})
    set(sums "")
    foreach(part IN LISTS parts)
      file(SHA256 "${part}" sum)
      string(APPEND sums "${sum}\n")
      set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${part}")
    endforeach()
    string(SHA256 recipe "${sums}")
    string(SUBSTRING "${recipe}" 0 12 recipe)
    if(DEFINED ENV{LUMETWIN_CACHE})
      set(cache "$ENV{LUMETWIN_CACHE}")
    elseif(DEFINED ENV{XDG_CACHE_HOME})
      set(cache "$ENV{XDG_CACHE_HOME}/lumetwin")
    else()
      set(cache "$ENV{HOME}/.cache/lumetwin")
    endif()
    set(LUMETWIN_STACK "${cache}/stack-${recipe}")
  endif()
  if(NOT EXISTS "${LUMETWIN_STACK}/.complete")
    message(FATAL_ERROR "The media stack is not built (${LUMETWIN_STACK}): run ./run --build-only first, "
                        "or set LUMETWIN_SYSTEM_MEDIA=ON")
  endif()
  set(ENV{PKG_CONFIG_PATH} "${LUMETWIN_STACK}/lib/pkgconfig")
  set(PKG_CONFIG_ARGN --static)
  list(PREPEND CMAKE_PREFIX_PATH "${LUMETWIN_STACK}")
endif()

# When the stack's folder changes, forget the cached results of pkg-config for the old one.
if(NOT "${LUMETWIN_STACK}" STREQUAL "${LUMETWIN_STACK_BEFORE}")
  get_cmake_property(cached CACHE_VARIABLES)
  list(FILTER cached INCLUDE REGEX "^(__pkg_config_checked_|pkgcfg_lib_)")
  foreach(variable IN LISTS cached)
    unset(${variable} CACHE)
  endforeach()
  set(LUMETWIN_STACK_BEFORE "${LUMETWIN_STACK}" CACHE INTERNAL "The stack that the cache describes")
endif()

pkg_check_modules(FFMPEG REQUIRED IMPORTED_TARGET GLOBAL
                  libavformat>=61.7 libavcodec>=61.19 libswresample>=5.3 libswscale>=8.3 libavutil>=59.39)
pkg_check_modules(X265 REQUIRED IMPORTED_TARGET GLOBAL x265>=4.1)
pkg_check_modules(HEIF REQUIRED IMPORTED_TARGET GLOBAL libheif>=1.19)
unset(PKG_CONFIG_ARGN)
pkg_check_modules(ZIMG REQUIRED IMPORTED_TARGET GLOBAL zimg>=3.0.4)
pkg_check_modules(RUBBERBAND REQUIRED IMPORTED_TARGET GLOBAL rubberband>=3.0)
pkg_check_modules(LCMS REQUIRED IMPORTED_TARGET GLOBAL lcms2)
pkg_check_modules(JPEG REQUIRED IMPORTED_TARGET GLOBAL libjpeg)
pkg_check_modules(PNG REQUIRED IMPORTED_TARGET GLOBAL libpng)
pkg_check_modules(TIFF REQUIRED IMPORTED_TARGET GLOBAL libtiff-4)

if(NOT LUMETWIN_SYSTEM_MEDIA)
  # Libraries that the static libheif needs. Its pkg-config file does not list them.
  pkg_check_modules(BROTLI REQUIRED IMPORTED_TARGET GLOBAL libbrotlidec libbrotlienc)
  find_package(ZLIB REQUIRED)
  target_link_libraries(PkgConfig::HEIF INTERFACE PkgConfig::FFMPEG PkgConfig::BROTLI ZLIB::ZLIB)
endif()

add_library(lumetwin::ffmpeg ALIAS PkgConfig::FFMPEG)
add_library(lumetwin::x265 ALIAS PkgConfig::X265)
add_library(lumetwin::heif ALIAS PkgConfig::HEIF)
add_library(lumetwin::rubberband ALIAS PkgConfig::RUBBERBAND)
add_library(lumetwin::zimg ALIAS PkgConfig::ZIMG)
