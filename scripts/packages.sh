# SPDX-License-Identifier: GPL-3.0-or-later
# The distribution packages that Lumetwin needs, and the function that installs what is missing.
# Sourced by ./run and ./test.

packages_build=(
    build-essential cmake ninja-build pkg-config nasm git ca-certificates xz-utils patch dpkg-dev
    libx264-dev libdav1d-dev libzimg-dev libfmt-dev zlib1g-dev libbrotli-dev
    liblcms2-dev libjpeg62-turbo-dev libpng-dev libtiff-dev
    qt6-base-dev qt6-base-dev-tools libqt6svg6-dev libgl-dev libxkbcommon-dev libvulkan-dev
)
packages_window=(
    libqt6svg6 qt6-qpa-plugins qt6-wayland fonts-dejavu-core fonts-noto-cjk fonts-noto-color-emoji
)
packages_test=(
    libgtest-dev libgmock-dev libbenchmark-dev ffmpeg mediainfo libimage-exiftool-perl
    libheif-examples imagemagick desktop-file-utils appstream xvfb xauth xdotool openbox
    dbus-x11 at-spi2-core gir1.2-atspi-2.0 python3-gi man-db x11-utils libxml2-utils
)

# missing_packages NAME…: those that are not installed.
missing_packages() {
    local name
    local -A installed=()
    while read -r name; do installed[$name]=1; done < <(
        dpkg-query -W -f='${db:Status-Abbrev}${Package}\n' "$@" 2>/dev/null | sed -n 's/^ii *//p'
    )
    for name in "$@"; do [ -n "${installed[$name]:-}" ] || echo "$name"; done
}

# install_packages NAME…: installs what is missing; without a missing one it does not touch the network.
install_packages() {
    local missing
    command -v apt-get >/dev/null || die "only Debian and its relatives are set up automatically; see CONTRIBUTING.md"
    mapfile -t missing < <(missing_packages "$@")
    [ ${#missing[@]} -gt 0 ] || return 0
    say "packages to install: ${missing[*]}"
    step "package lists" as_root apt-get update
    # Recommended packages are left out: this is a build, not a desktop.
    step "packages" as_root env DEBIAN_FRONTEND=noninteractive \
        apt-get install --yes --no-install-recommends "${missing[@]}"
}
