# SPDX-License-Identifier: GPL-3.0-or-later
# shellcheck shell=bash disable=SC2034,SC2154
# The distribution packages that Lumetwin needs, and the function that installs missing ones.
# ./run and ./test source this file.

packages_build=(
    build-essential cmake ninja-build pkg-config nasm git ca-certificates xz-utils patch dpkg-dev file python3
    libx264-dev libdav1d-dev libzimg-dev librubberband-dev libfmt-dev nlohmann-json3-dev zlib1g-dev libbrotli-dev
    liblcms2-dev libjpeg62-turbo-dev libpng-dev libtiff-dev libseccomp-dev libpugixml-dev libutfcpp-dev
    qt6-base-dev qt6-base-dev-tools qt6-svg-dev libgl-dev libxkbcommon-dev libvulkan-dev
)
packages_window=(
    libqt6svg6 qt6-qpa-plugins qt6-wayland qt6-translations-l10n fonts-dejavu-core fonts-noto-cjk
)
# Since Debian 13 the plugins of libqt6svg6 are a separate package.
grep -q '^VERSION_CODENAME=bookworm' /etc/os-release 2>/dev/null || packages_window+=(qt6-svg-plugins)
packages_test=(
    libgtest-dev libgmock-dev libbenchmark-dev lld ffmpeg mediainfo libimage-exiftool-perl
    libheif-examples imagemagick gettext desktop-file-utils appstream xvfb xauth xdotool openbox
    dbus-x11 at-spi2-core gir1.2-atspi-2.0 gir1.2-gtk-3.0 python3-gi sway grim wtype
    man-db x11-utils libxml2-utils python3-yaml shared-mime-info zsh fish
)

# missing_packages NAME…: prints the packages that are not installed.
missing_packages() {
    local name
    local -A installed=()
    while read -r name; do installed[$name]=1; done < <(
        dpkg-query -W -f='${db:Status-Abbrev}${Package}\n' "$@" 2>/dev/null | sed -n 's/^ii *//p'
    )
    for name in "$@"; do [ -n "${installed[$name]:-}" ] || echo "$name"; done
}

# refresh_package_lists: runs apt-get update, and waits up to a minute for another apt. A source that cannot be reached
# is not an error yet, because it may not be needed.
refresh_package_lists() {
    local attempt output code
    for attempt in {1..12}; do
        code=0
        output=$(as_root apt-get update 2>&1) || code=$?
        printf '%s\n' "$output"
        [ $code -ne 0 ] && grep -qi 'could not get lock' <<<"$output" || return 0
        [ "$attempt" -eq 12 ] || sleep 5
    done
    return 1
}

# install_packages NAME…: installs missing packages. Does not use the network when none is missing.
install_packages() {
    local missing lists_log
    command -v apt-get >/dev/null || die "only Debian and its relatives are set up automatically; see CONTRIBUTING.md"
    mapfile -t missing < <(missing_packages "$@")
    [ ${#missing[@]} -gt 0 ] || return 0
    say "packages to install: ${missing[*]}"
    need_root "installing packages"
    step "package lists" refresh_package_lists
    lists_log=$step_log
    # Recommended packages are left out, because a build does not need them.
    logged "packages" as_root env DEBIAN_FRONTEND=noninteractive \
        apt-get -o DPkg::Lock::Timeout=60 install --yes --no-install-recommends "${missing[@]}" && return 0
    if grep -q 'Unable to locate package' "$step_log" && grep -q 'Failed to fetch' "$lists_log"; then
        step_failed "packages" "the package lists could not be fetched (is the network up?)"
    fi
    step_failed "packages"
}
