# shellcheck shell=bash
# What both commands need before they start: the Debian packages, and a build.
#
#   setup_packages            install the packages that are missing (with sudo where not root)
#   setup_more_packages PACKAGE ...
#                             the same for packages that only the caller needs
#   setup_build PRESET [TARGET ...]
#                             configure and build; sets BUILD_DIR
#   setup_display DIR         show windows on the user's display, or on a virtual one of our own
#                             (SETUP_SCREEN: its size, 1024x768)
#   setup_display_is_virtual  whether nobody can see it
#   setup_display_stop        end the virtual display, if there is one
#   setup_stop_process PID    end a process of our own and wait for it; an empty PID is none

export LC_ALL=C.UTF-8 # Korean in texts and file names, wherever this runs

setup__root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
setup__xvfb=''

setup__packages=(
    # the compiler and the libraries
    g++ cmake ninja-build libboost-dev libcli11-dev libmariadb-dev libsqlite3-dev qt6-base-dev
    unixodbc-dev
    # a head office: server, client, ODBC drivers
    mariadb-server-core mariadb-client-core odbc-mariadb libsqliteodbc unixodbc
    # tests and benchmarks
    libgtest-dev libgmock-dev libbenchmark-dev
    # a display, a picture of it, Korean letters
    xvfb xauth x11-apps x11-utils imagemagick fonts-nanum sqlite3
)

setup__say() { printf '== %s\n' "$*"; }

setup_packages() { setup_more_packages "${setup__packages[@]}"; }

setup_more_packages() {
    local package missing=() as_root=()
    for package in "$@"; do
        [[ $(dpkg-query -W -f='${db:Status-Status}' "$package" 2> /dev/null) == installed ]] ||
            missing+=("$package")
    done
    ((${#missing[@]} > 0)) || return 0
    setup__say "installing ${missing[*]}"
    [[ $(id -u) == 0 ]] || as_root=(sudo)
    "${as_root[@]}" apt-get update -qq
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y -qq --no-install-recommends "${missing[@]}" > /dev/null
}

setup_build() {
    local preset=$1 target
    shift
    BUILD_DIR=$setup__root/build/$preset
    if [[ ! -e $BUILD_DIR/build.ninja ]]; then
        setup__say "configuring ($preset)"
        (cd "$setup__root" && cmake --preset "$preset" > /dev/null)
    fi
    setup__say "building ($preset)"
    local targets=()
    for target in "$@"; do
        targets+=(--target "$target")
    done
    (cd "$setup__root" && cmake --build --preset "$preset" "${targets[@]}") |
        { grep -v -e '^ninja: no work' -e '^\[[0-9/]*\]' -e '^-- ' || true; }
}

setup_display() {
    if [[ -n ${DISPLAY:-} ]] && xwininfo -root > /dev/null 2>&1; then
        export QT_QPA_PLATFORM=xcb
        return 0
    fi
    setup__say 'no display: using a virtual one'
    local number_file=$1/display authority=$1/xauthority
    : > "$number_file"
    : > "$authority"
    # It picks a free number itself and says which.
    XAUTHORITY=$authority Xvfb -displayfd 3 -screen 0 "${SETUP_SCREEN:-1024x768}x24" -nolisten tcp \
        3> "$number_file" > /dev/null 2>&1 < /dev/null &
    setup__xvfb=$!
    for _ in {1..100}; do
        [[ ! -s $number_file ]] || break
        sleep 0.1
    done
    [[ -s $number_file ]] || { setup__say 'the virtual display did not start' >&2; return 1; }
    DISPLAY=:$(cat "$number_file")
    export DISPLAY QT_QPA_PLATFORM=xcb XAUTHORITY=$authority
}

setup_display_is_virtual() { [[ -n $setup__xvfb ]]; }

setup_display_stop() {
    setup_stop_process "$setup__xvfb"
    setup__xvfb=''
}

setup_stop_process() { [[ -z $1 ]] || { kill "$1" && wait "$1"; } 2> /dev/null || true; }
