# SPDX-License-Identifier: GPL-3.0-or-later
# Packages: cpack -G DEB in the folder of a release build makes a .deb for the Debian release that it was built on.
# dpkg-shlibdeps computes the library dependencies.
set(CPACK_PACKAGE_NAME lumetwin)
set(CPACK_PACKAGE_VENDOR "Lumetwin developers")
set(CPACK_PACKAGE_CONTACT "Lumetwin developers <dev@lumetwin.example>")
set(CPACK_PACKAGE_HOMEPAGE_URL "https://${LUMETWIN_SITE}/mac/lumetw/index_en.html")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "convert stereoscopic media between spatial and side-by-side")
set(CPACK_PACKAGE_DESCRIPTION
"Lumetwin converts stereoscopic videos and photos in batches, from spatial
media (MV-HEVC movies, stereo HEIC photos) to side-by-side media and back.
This package holds the window and lumetwin-batch for scripts.")
set(CPACK_RESOURCE_FILE_LICENSE "${CMAKE_SOURCE_DIR}/LICENSE")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_GENERATOR DEB)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION video)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
# Arranges documents and manual pages as Debian requires.
set(CPACK_PRE_BUILD_SCRIPTS "${CMAKE_CURRENT_LIST_DIR}/debian/arrange.cmake")

# Dependencies that are loaded at run time, which dpkg-shlibdeps does not find. Required: X11, the index of the icon
# theme, and Qt's own texts in the user's language. Recommended: Wayland (without it the window uses XWayland), a
# Japanese font, and a program that opens web pages. The program's pictures need no plugin: Qt's SVG library, which is
# linked, draws them.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "qt6-qpa-plugins, qt6-translations-l10n, hicolor-icon-theme")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS
    "qt6-wayland, fonts-noto-cjk | fonts-japanese-gothic, xdg-utils")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "qt6-gtk-platformtheme")

include(CPack)
