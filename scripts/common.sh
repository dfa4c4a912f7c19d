# Shared by the scripts of this folder: the root of the tree, messages, and packages that are installed when missing.
# Sourced, not run.

set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"
jobs=$(nproc)

# What each kind of work needs on Debian 12 and its relatives.
packages_build=(g++ cmake ninja-build ccache lld python3 qt6-base-dev qt6-base-dev-tools)
packages_show=(fonts-dejavu-core fonts-noto-core fonts-droid-fallback)
packages_test=(libgtest-dev libgmock-dev locales clang-format-14 xvfb xauth openbox xdotool wmctrl xclip imagemagick
    pkg-config libgtk-3-dev qt6-tools-dev designer-qt6 libqt6opengl6-dev)
packages_bench=(locales pkg-config libgtk-3-dev xvfb)

say() { printf '\n== %s\n' "$*" >&2; }

die() {
    printf '%s: %s\n' "$(basename "$0")" "$*" >&2
    exit 1
}

as_root() {
    if [ "$(id -u)" = 0 ]; then
        "$@"
    elif command -v sudo >/dev/null; then
        sudo "$@"
    else
        die "installing packages needs root: $*"
    fi
}

# Installs those of the named packages that are missing. QUILL_NO_INSTALL=1 leaves the machine as it is.
ensure_packages() {
    local package missing=()
    if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
        say "no apt here; needed are: $*"
        return
    fi
    for package in "$@"; do
        [ "$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null || true)" = installed ] || missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    if [ -n "${QUILL_NO_INSTALL:-}" ]; then
        say "missing, and not installed as asked: ${missing[*]}"
        return
    fi
    say "installing ${missing[*]}"
    # The lists may be missing or name files that are gone: one attempt with what is there, one with fresh lists.
    apt_install "${missing[@]}" || { as_root apt-get -qq update && apt_install "${missing[@]}"; } ||
        die "could not install ${missing[*]}"
}

apt_install() {
    as_root env DEBIAN_FRONTEND=noninteractive apt-get -qq install --no-install-recommends "$@" >/dev/null
}

# Stores in the variable NAME the path of a new folder that goes when the script ends.
temporary_folder() {
    local -n folder=$1
    folder=$(mktemp -d /tmp/quill-XXXXXX)
    temporaries+=("$folder")
}
temporaries=()
trap 'rm -rf "${temporaries[@]}"' EXIT

# Qt wants a private folder for its sockets and warns without one.
ensure_runtime_dir() {
    if [ -z "${XDG_RUNTIME_DIR:-}" ] || [ ! -d "$XDG_RUNTIME_DIR" ]; then
        temporary_folder XDG_RUNTIME_DIR
        export XDG_RUNTIME_DIR
    fi
}

# Our own C++ files.
own_sources() {
    local folder folders=()
    for folder in host treecoll quilltree exgrid htmldraw oledragdrop flyedit designer examples tests bench; do
        if [ -d "$folder" ]; then folders+=("$folder"); fi
    done
    find "${folders[@]}" \( -name '*.h' -o -name '*.cpp' \) -print0
}

clang_format() {
    local name
    # Versions differ in what they write; the reference is 14.
    for name in clang-format-14 clang-format; do
        if command -v "$name" >/dev/null; then
            printf '%s' "$name"
            return
        fi
    done
}
