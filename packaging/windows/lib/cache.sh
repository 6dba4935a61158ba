# shellcheck shell=bash
# What is built once and kept: a static Qt and SQLite for each width, from Debian's own sources.
#
#   cache_has WIDTH           whether both are there for a width (x86_64 or i686)
#   cache_fill WIDTH          build what is missing (Qt takes about half an hour on two cores)
#   cache_home                where everything is kept
#   cache_qt WIDTH            where Qt is installed
#   cache_sqlite WIDTH        where SQLite is installed
#   cache_headers             a folder with nothing but the headers of Boost and CLI11
#
# The folder is QUILLET_WINDOWS_CACHE, by default quillet-windows in the user's cache folder. A
# change of the recipe below asks for a new recipe number.

cache__here=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cache__home=${QUILLET_WINDOWS_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/quillet-windows}
cache__recipe=1

cache_home() { printf '%s' "$cache__home"; }
cache_qt() { printf '%s/qt-%s-%s' "$cache__home" "$cache__recipe" "$1"; }
cache_sqlite() { printf '%s/sqlite-%s-%s' "$cache__home" "$cache__recipe" "$1"; }

cache_has() { [[ -e $(cache_qt "$1")/.complete && -e $(cache_sqlite "$1")/.complete ]]; }

cache_headers() { printf '%s/headers' "$cache__home"; }

# The steps are chained: bash does not stop at a failing command where the caller asks for the
# outcome. One at a time: a second build in the same folder would clear away the first one's.
cache_fill() (
    ! cache_has "$1" || [[ ! -e $(cache_headers)/CLI ]] || exit 0 # nothing to wait for
    mkdir -p "$(cache_headers)" && exec 9> "$cache__home/lock" || exit 1
    if ! flock -n 9; then
        echo "$cache__home is being filled already: waiting" >&2
        flock 9 || exit 1
    fi
    # The compiler must never see the rest of the system's own headers.
    ln -sfn /usr/include/boost "$(cache_headers)/boost" &&
        ln -sfn /usr/include/CLI "$(cache_headers)/CLI" || exit 1
    [[ -e $(cache_sqlite "$1")/.complete ]] || cache__sqlite "$1" || exit 1
    [[ -e $(cache_qt "$1")/.complete ]] || cache__qt "$1"
)

# cache__source PACKAGE: its source as Debian has it, from the mirrors of this machine. The machine's
# own apt settings stay as they are; the lists with sources are our own.
cache__source() {
    local package=$1 apt=$cache__home/apt
    local tree=$cache__home/source/$package
    if [[ -e $tree/.complete ]]; then
        printf '%s' "$tree"
        return
    fi
    mkdir -p "$apt/lists/partial" "$apt/archives/partial" "$cache__home/source"
    # Both forms of apt's source lists, in either of the places where they stand.
    {
        grep -hs '^deb ' /etc/apt/sources.list /etc/apt/sources.list.d/*.list | grep -i debian |
            sed 's/^deb /deb-src /'
        local list
        for list in /etc/apt/sources.list.d/*.sources; do
            [[ -e $list ]] || continue
            awk 'tolower($1) == "types:" { next } tolower($1) == "uris:" { uris = $2 }
                 tolower($1) == "suites:" { $1 = ""; suites = $0 }
                 tolower($1) == "signed-by:" { key = $2 }
                 /^[[:space:]]*$/ { flush() }
                 function flush(   n, i, name) {
                     if (uris ~ /debian/) { n = split(suites, name, " ")
                         for (i = 1; i <= n; i++)
                             print "deb-src " (key ? "[signed-by=" key "] " : "") uris, name[i], "main" }
                     uris = suites = key = "" }' "$list" <(echo) # the empty line ends the last stanza
        done
    } > "$apt/sources.list"
    local options=(-o Dir::Etc::sourcelist="$apt/sources.list" -o Dir::Etc::sourceparts=-
        -o Dir::State::lists="$apt/lists" -o Dir::Cache="$apt" -o APT::Sandbox::User=)
    rm -rf "$tree"
    (
        apt-get "${options[@]}" -qq update &&
        cd "$cache__home/source" &&
        apt-get "${options[@]}" -qq source --download-only "$package" &&
        dpkg-source --no-check -x "$(find . -maxdepth 1 -name "${package}_*.dsc" | sort | tail -n 1)" \
            "$tree"
    ) > "$cache__home/source.log" 2>&1 || { tail "$cache__home/source.log" >&2; return 1; }
    touch "$tree/.complete"
    printf '%s' "$tree"
}

# The one C file of all of SQLite, and a static library of it.
cache__sqlite() {
    local width=$1 source build=$cache__home/build/sqlite-$1 to flags=(-O2)
    source=$(cache__source sqlite3) || return 1
    to=$(cache_sqlite "$width")
    rm -rf "$build" "$to"
    mkdir -p "$build" "$to/include" "$to/lib"
    # As in the toolchain file.
    [[ $width != i686 ]] || flags+=(-msse2 -mfpmath=sse -mstackrealign)
    (
        cd "$build" &&
        "$source/configure" --disable-readline --disable-tcl &&
        make sqlite3.c &&
        "$width-w64-mingw32-gcc-posix" "${flags[@]}" -c sqlite3.c -o sqlite3.o \
            -DSQLITE_THREADSAFE=1 -DSQLITE_OMIT_LOAD_EXTENSION -DSQLITE_ENABLE_COLUMN_METADATA &&
        "$width-w64-mingw32-ar" rcs "$to/lib/libsqlite3.a" sqlite3.o &&
        cp sqlite3.h "$to/include/"
    ) > "$cache__home/sqlite-$width.log" 2>&1 || { tail "$cache__home/sqlite-$width.log" >&2; return 1; }
    rm -rf "$build"
    touch "$to/.complete"
}

# Only what a window needs: no network, no databases, no OpenGL.
cache__qt() {
    local width=$1 source build=$cache__home/build/qt-$1 to feature
    local features=()
    source=$(cache__source qt6-base) || return 1
    to=$(cache_qt "$width")
    # dynamicgl is not switched off with the rest of OpenGL by itself.
    for feature in sql network xml testlib printsupport concurrent opengl opengl_desktop dynamicgl \
        dbus openssl icu glib vulkan zstd brotli gssapi pkg_config tabletevent direct2d directwrite \
        directwrite3 system_zlib system_pcre2 system_doubleconversion system_freetype \
        system_harfbuzz system_png system_jpeg; do
        features+=("-DFEATURE_$feature=OFF")
    done
    rm -rf "$build" "$to"
    (
        cmake -G Ninja -S "$source" -B "$build" -DCMAKE_INSTALL_PREFIX="$to" \
            -DCMAKE_TOOLCHAIN_FILE="$cache__here/toolchain/$width.cmake" \
            -DQT_HOST_PATH=/usr -DQT_HOST_PATH_CMAKE_DIR="/usr/lib/$(gcc -print-multiarch)/cmake" \
            -DCMAKE_BUILD_TYPE=Release -DBUILD_SHARED_LIBS=OFF -DFEATURE_static_runtime=ON \
            -DQT_BUILD_TESTS=OFF -DQT_BUILD_EXAMPLES=OFF "${features[@]}" &&
            nice cmake --build "$build" && cmake --install "$build"
    ) > "$cache__home/qt-$width.log" 2>&1 || { tail "$cache__home/qt-$width.log" >&2; return 1; }
    rm -rf "$build"
    touch "$to/.complete"
}
