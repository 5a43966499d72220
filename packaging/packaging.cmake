# SPDX-License-Identifier: GPL-3.0-or-later
# Packages: cpack -G DEB in the build folder makes a .deb whose dependencies dpkg-shlibdeps computes.
set(CPACK_PACKAGE_NAME lumetwin)
set(CPACK_PACKAGE_VENDOR "Lumetwin developers")
set(CPACK_PACKAGE_CONTACT "Lumetwin developers <dev@lumetwin.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "convert stereoscopic media between spatial and side-by-side")
set(CPACK_PACKAGE_DESCRIPTION
"Lumetwin converts stereoscopic videos and photos in batches, from spatial
media (MV-HEVC movies, stereo HEIC photos) to side-by-side media and back.
This package holds the window and lumetwin-batch for scripts.")
set(CPACK_RESOURCE_FILE_LICENSE "${CMAKE_SOURCE_DIR}/LICENSE")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_GENERATOR DEB)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION video)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Plugins are loaded by name, which shlibdeps does not see.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "qt6-qpa-plugins")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS
    "qt6-wayland, qt6-translations-l10n, fonts-noto-color-emoji, fonts-noto-cjk, hicolor-icon-theme")

include(CPack)
