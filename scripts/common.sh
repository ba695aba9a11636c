# Parts that ./run and ./test share. Sourced by them, with `root` set to the project's folder.
# shellcheck shell=bash disable=SC2154,SC2034

say() { printf '%s\n' "$*" >&2; }

die() {
    say "$*"
    exit 1
}

# quietly LOG COMMAND... keeps what a command says to itself, unless it fails.
quietly() {
    local log=$1
    shift
    "$@" >"$log" 2>&1 </dev/null && return
    cat "$log" >&2
    return 1
}

# missing_packages PACKAGE... prints those that aren't installed. Where there is no dpkg, CMake finds out.
missing_packages() {
    command -v dpkg-query >/dev/null || return 0
    local installed package
    # It fails where it doesn't know a package, which is then just not among those it prints.
    installed=$(dpkg-query -W -f '${db:Status-Status} ${Package}\n' "$@" 2>/dev/null | sed -n 's/^installed //p') || true
    for package in "$@"; do
        grep -qxF -- "$package" <<<"$installed" || printf '%s\n' "$package"
    done
}

# install_packages PACKAGE... installs those that are missing. Needs root or sudo for that alone.
install_packages() {
    local missing log as_root=()
    mapfile -t missing < <(missing_packages "$@")
    [ ${#missing[@]} -eq 0 ] && return
    if [ "$(id -u)" -ne 0 ]; then
        if ! command -v sudo >/dev/null; then
            say "These Debian packages are missing: ${missing[*]}"
            say "Installing them needs root, and there is no sudo here. As root, run: apt-get install ${missing[*]}"
            return 1
        fi
        as_root=(sudo)
    fi
    say "Installing Debian packages: ${missing[*]}"
    if [ ${#as_root[@]} -ne 0 ] && ! sudo -v; then
        say "Installing them needs root, and sudo doesn't give it. As root, run: apt-get install ${missing[*]}"
        return 1
    fi
    as_root+=(env DEBIAN_FRONTEND=noninteractive apt-get -o DPkg::Lock::Timeout=600)
    log=$(mktemp)
    # What can't be fetched anew may still be listed from before: the second call decides.
    "${as_root[@]}" update >"$log" 2>&1 </dev/null || true
    if ! "${as_root[@]}" install -y --no-install-recommends "${missing[@]}" >>"$log" 2>&1 </dev/null; then
        cat "$log" >&2
        rm -f "$log"
        say "These packages could not be installed: ${missing[*]}"
        return 1
    fi
    rm -f "$log"
}

# What the terminal program needs, what its optional parts need, what the desktop program needs beside it, what the
# tests need, what making packages needs, and what the trials of tests/system need. The optional parts are found by
# CMake; without one, the program says what it was built without.
core_packages=(cmake ninja-build libcli11-dev nlohmann-json3-dev libssl-dev zlib1g-dev libarchive-dev libwim-dev xz-utils)
optional_packages=(libbfio-dev libewf-dev libvhdi-dev libvmdk-dev libqcow-dev libfuse3-dev fuse3)
desktop_packages=(qt6-base-dev qt6-svg-dev qt6-image-formats-plugins libqt6svg6 qt6-translations-l10n)
test_packages=(libgtest-dev dbus-daemon qemu-utils ewf-tools)
package_packages=(dpkg-dev file pandoc librsvg2-bin)
trial_packages=(python3 debootstrap lintian udisks2 polkitd udev libglib2.0-bin)

# install_needed PACKAGE... installs the compiler, core_packages and what is named.
install_needed() {
    # shellcheck disable=SC2046 # one word or none
    install_packages $(compiler_package) "${core_packages[@]}" "$@" || exit 1
}

# compiler_package prints the package of a C++ compiler where there is none.
compiler_package() { command -v c++ >/dev/null || command -v g++ >/dev/null || echo g++; }

# take_lock FOLDER waits until no other call works in the folder. The lock goes with descriptor 9.
take_lock() {
    mkdir -p "$1"
    exec 9<"$1"
    flock -w 2 9 && return
    say "Another build is at work in $1; waiting for it."
    flock 9
}

drop_lock() { exec 9<&-; }

# configure PRESET FOLDER [OPTION]... A build folder that was made for another place is made anew.
configure() {
    local preset=$1 folder=$2
    shift 2
    if [ -e "$folder/CMakeCache.txt" ] &&
        ! grep -qxF "CMAKE_HOME_DIRECTORY:INTERNAL=$root" "$folder/CMakeCache.txt"; then
        find "$folder" -mindepth 1 -delete
    fi
    [ -e "$folder/build.ninja" ] || cmake -S "$root" --preset "$preset" -B "$folder" "$@"
}
