# shellcheck shell=bash
# The Windows programs, built on Debian. Needs setup.sh and cache.sh.
#
#   programs_packages [MORE]  install what is needed and missing
#   programs_build WIDTH      configure and build, and put together what a counter gets
#   programs_folder WIDTH     where that is
#   programs_version WIDTH    of what is built

programs__root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../../.." && pwd)
programs__here=$programs__root/packaging/windows
programs__names=(quillet quillet-headoffice quillet-new-store)

# All of them are on every Windows 10 and 11. Whatever else a program asks for, a counter may lack.
programs__system_dlls=(advapi32 api-ms-win-core-synch-l1-2-0 api-ms-win-core-winrt-l1-1-0
    api-ms-win-core-winrt-string-l1-1-0 authz comdlg32 d3d11 d3d9 dwmapi dxgi gdi32 imm32 kernel32
    mpr msvcrt mswsock netapi32 ntdll odbc32 ole32 oleaut32 rpcrt4 setupapi shcore shell32 shlwapi
    user32 userenv uxtheme version winmm winspool.drv ws2_32 wtsapi32)

programs_packages() {
    setup_more_packages "$@" g++ cmake ninja-build libboost-dev libcli11-dev qt6-base-dev dpkg-dev \
        make tcl g++-mingw-w64-x86-64-posix g++-mingw-w64-i686-posix
}

programs_folder() { printf '%s/build/windows/%s/counter' "$programs__root" "$1"; }

programs_version() {
    sed -n 's/^CMAKE_PROJECT_VERSION:[A-Z]*=//p' "$programs__root/build/windows/$1/CMakeCache.txt"
}

programs_build() {
    local width=$1 build=$programs__root/build/windows/$1 qt headers sqlite
    qt=$(cache_qt "$width") headers=$(cache_headers) sqlite=$(cache_sqlite "$width")
    mkdir -p "$build"
    setup__say "building for Windows ($width)"
    cmake -G Ninja -S "$programs__root" -B "$build" -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_TOOLCHAIN_FILE="$qt/lib/cmake/Qt6/qt.toolchain.cmake" \
        -DQT_CHAINLOAD_TOOLCHAIN_FILE="$programs__here/toolchain/$width.cmake" \
        -DQT_HOST_PATH=/usr -DQT_HOST_PATH_CMAKE_DIR="/usr/lib/$(gcc -print-multiarch)/cmake" \
        -DQUILLET_BUILD_TESTS=OFF -DBoost_INCLUDE_DIR="$headers" \
        -DCLI11_INCLUDE_DIR="$headers" \
        -DSQLite3_INCLUDE_DIR="$sqlite/include" -DSQLite3_LIBRARY="$sqlite/lib/libsqlite3.a" \
        > "$build/configure.log" 2>&1 || { tail -n 30 "$build/configure.log" >&2; return 1; }
    cmake --build "$build" --target "${programs__names[@]}" > "$build/build.log" 2>&1 ||
        { grep -A 20 -e '^FAILED' -e 'error:' "$build/build.log" >&2; return 1; }
    programs__put_together "$width"
}

programs__put_together() {
    local width=$1 built=$programs__root/build/windows/$1/bin to name
    to=$(programs_folder "$width")
    rm -rf -- "$to"
    mkdir -p "$to/log" || return 1 # the program writes its download log only where the folder is
    for name in "${programs__names[@]}"; do
        "$width-w64-mingw32-strip" -o "$to/$name.exe" "$built/$name.exe" &&
            programs__require_system_dlls "$to/$name.exe" || return 1
    done
    programs__windows_text "$programs__here/README-technicians.en.txt" > "$to/README.txt" &&
        programs__windows_text "$programs__here/README-technicians.ko.txt" > "$to/사용설명서.txt"
}

# As Windows' own editors have expected it at all times.
programs__windows_text() { printf '\xEF\xBB\xBF' && sed 's/$/\r/' "$1"; }

programs__require_system_dlls() {
    local imports dll foreign=()
    imports=$(LC_ALL=C objdump -p "$1" | sed -n 's/^\tDLL Name: //p') || return 1
    [[ -n $imports ]] || { echo "$1 imports nothing at all" >&2; return 1; }
    while read -r dll; do
        dll=${dll,,}
        [[ " ${programs__system_dlls[*]} " == *" ${dll%.dll} "* ]] || foreign+=("$dll")
    done <<< "$imports"
    ((${#foreign[@]} == 0)) || { echo "$1 needs DLLs of its own: ${foreign[*]}" >&2; return 1; }
}
