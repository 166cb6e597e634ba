# shellcheck shell=bash
# What run, test and their kin share. To be sourced from the project's top folder.

say() { printf '\n== %s\n' "$*"; }

fail() {
    printf '%s\n' "$*" >&2
    exit 1
}

# install_packages LIST...: installs what the lists (packages.txt) name and the machine lacks; says what that is.
install_packages() {
    local package missing=() as_root=()
    while read -r package; do
        dpkg-query -W -f='${db:Status-Status}\n' "$package" 2>/dev/null | grep -qx installed || missing+=("$package")
    done < <(sed 's/#.*//; s/ *$//; /^$/d' "$@")
    [ ${#missing[@]} -gt 0 ] || return 0

    say "Installing Debian packages: ${missing[*]}"
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null || fail "Installing needs root. As root, run: apt-get install ${missing[*]}"
        as_root=(sudo)
    fi
    "${as_root[@]}" apt-get update -q
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -q -y --no-install-recommends "${missing[@]}"
}

# Prints the folder for build trees: build/ here, or one in the user's cache where that belongs to somebody else.
build_root() {
    if mkdir -p build 2>/dev/null && [ -w build ] && [ -O build ]; then
        printf '%s/build\n' "$PWD"
    else
        printf '%s/vantro-standalone/build\n' "${XDG_CACHE_HOME:-$HOME/.cache}"
    fi
}

# build PRESET [TARGET...]: configures and builds; without targets, everything.
build() {
    local preset=$1 folder launcher=()
    shift
    folder=$(build_root)/$preset
    command -v ccache >/dev/null && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
    say "Building ($preset)"
    cmake --preset "$preset" -B "$folder" "${launcher[@]}" >"$folder.log" 2>&1 || {
        cat "$folder.log"
        return 1
    }
    cmake --build "$folder" ${1:+--target "$@"}
}
