# shellcheck shell=bash
# Functions for ./run, ./test and the scripts: they find and install what is missing on Debian, then
# build a preset. Source this file from the top folder, with set -euo pipefail in force.

# Debian's packages, by purpose.
declare -A PACKAGES=(
    # The compiler, Qt's parts, and what their CMake files look for.
    [building]="g++ cmake ninja-build
        qt6-base-dev qt6-tools-dev qt6-tools-dev-tools qt6-svg-dev qt6-webengine-dev qt6-pdf-dev
        libgl1-mesa-dev libexpected-dev libseccomp-dev zlib1g-dev libxcb1-dev libxcb-shape0-dev pkg-config
        fonts-inter"
    # The MIME database, the opener of the browser, the sandbox for thumbnails and films, drawing
    # without a graphics card, and desktops that have only Wayland.
    [running]="shared-mime-info xdg-utils bubblewrap libegl1 libgl1-mesa-dri qt6-wayland"
    # A display and a window manager where there is no desktop.
    [showing]="xvfb xauth openbox"
    # Tools for the tests' own file systems and attributes, for keys that come from outside the
    # program, and for the scripts that are tested.
    [testing]="e2fsprogs xdotool python3"
    # What the long tests need beside: disks of another make and disks whose power can be cut, and
    # the fuzzer.
    [soaking]="e2fsprogs btrfs-progs xfsprogs libfuse3-dev mount
        clang libclang-rt-14-dev"
    # The programs that bench/compare measures Vantor beside, what it makes its disk with, and what
    # tells it of memory and of windows.
    [comparing]="coreutils findutils fd-find gdu ncdu rsync baobab filelight qdirstat bleachbit
        python3 tar e2fsprogs mount time x11-utils"
    # Tools that check a change before it is sent.
    [checking]="clang-format clang-tidy git"
)

LOG_FOLDER=build/logs

say() {
    if [[ -t 1 ]]; then
        printf '\033[1m==>\033[0m %s\n' "$*"
    else
        printf '==> %s\n' "$*"
    fi
}
fail() {
    printf 'error: %s\n' "$*" >&2
    exit 1
}

# quietly LOG COMMAND...: shows the command's output only when it fails.
quietly() {
    local log="$LOG_FOLDER/$1"
    shift
    mkdir -p "$LOG_FOLDER"
    if ! "$@" >"$log" 2>&1 </dev/null; then
        tail -n 40 "$log" >&2
        fail "\"$*\" failed; all of its output is in $log"
    fi
}

missing_packages() {
    local package
    for package in "$@"; do
        [[ $(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null) == installed ]] ||
            printf '%s\n' "$package"
    done
}

may_ask() { [[ ${CI:-} != true && -t 0 && -t 2 ]]; }

# Prints the command prefix that gives the right to install; nothing for root.
installing_words() {
    ((EUID != 0)) || return 0
    local by_hand="install them as root and start again: apt-get install --no-install-recommends $1"
    command -v sudo >/dev/null || fail "there is no sudo here; $by_hand"
    if may_ask; then
        local answer
        read -r -p "Install them with sudo? [Y/n] " answer
        [[ $answer =~ ^([yY].*)?$ ]] || fail "nothing was installed; $by_hand"
        printf '%s\n' sudo
    else
        sudo -n true 2>/dev/null || fail "sudo would ask for a password, and nobody is there; $by_hand"
        printf '%s\n' sudo -n
    fi
}

install_on_debian() {
    local missing words rights
    mapfile -t missing < <(missing_packages "$@")
    ((${#missing[@]} > 0)) || return 0
    say "Packages missing: ${missing[*]}"
    words=$(installing_words "${missing[*]}")
    mapfile -t rights < <(printf '%s' "$words")
    say "Installing them (some minutes on a fresh system)"
    quietly apt-update.log "${rights[@]}" apt-get update
    quietly apt-install.log "${rights[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y --no-install-recommends "${missing[@]}"
}

# Other systems name their packages differently: print what is needed, and go on if the tools are
# there.
name_the_needs() {
    cat >&2 <<'NEEDS'
This is not Debian, so nothing is installed for you. Vantor needs:
  a C++20 compiler (GCC 12 or later), CMake 3.25, Ninja
  Qt 6.4 or later: Core, Gui, Widgets, Network, Svg, UiTools, Test, Quick, WebEngine, Pdf, with their headers
  tl::expected (headers), libseccomp (headers), zlib (headers), xcb and xcb-shape (headers), pkg-config, OpenGL (headers), shared-mime-info, xdg-utils, bubblewrap
  the static OpenType files of the Inter typeface (their folder goes into VANTOR_FONT_DIR)
  without a desktop: Xvfb and xvfb-run, xauth, openbox
  for the tests: e2fsprogs, xdotool, Python 3.11; for the long ones: e2fsprogs, btrfs-progs, xfsprogs, libfuse 3 (headers)
  to compare its speed: du, find, fd, gdu, ncdu, rm, rsync, baobab, filelight, qdirstat, bleachbit, GNU time, xprop
  to check a change: clang-format, clang-tidy (14 or later), git
NEEDS
    local tool
    for tool in c++ cmake ninja; do
        command -v "$tool" >/dev/null || fail "$tool was not found"
    done
}

# install_needs PURPOSE...: building, running, showing, testing, soaking, comparing, checking.
install_needs() {
    local purpose packages=()
    for purpose in "$@"; do
        read -r -d '' -a packages < <(printf '%s %s\0' "${packages[*]}" "${PACKAGES[$purpose]}")
    done
    if command -v apt-get >/dev/null && command -v dpkg-query >/dev/null; then
        install_on_debian "${packages[@]}"
    else
        name_the_needs
    fi
}

# build_preset PRESET [TARGET...]: everything when no target is named.
build_preset() {
    local preset="$1" targets=() quiet=()
    shift
    (($# == 0)) || targets=(--target "$@")
    [[ -t 1 ]] || quiet=(-- --quiet)
    say "Configuring ($preset)"
    quietly "configure-$preset.log" cmake --preset "$preset"
    say "Building ($preset)"
    cmake --build --preset "$preset" "${targets[@]}" "${quiet[@]}"
}
