# Sourced: builds a program of this folder against an installed library, and runs it. The caller has
# set `prefix`, where the library is, `work`, a folder of its own, and `qt`, the major version of Qt.
# A program is told where the library is and not where that has its own libraries: it knows by itself.

source "$(dirname "${BASH_SOURCE[0]}")/names.sh"

# with_cmake PROGRAM [cmake arguments]
with_cmake()
{
    local program=$1
    shift
    local build=$work/$program-cmake
    rm -rf "$build"
    cmake -S "$(dirname "${BASH_SOURCE[0]}")/$program" -B "$build" -G Ninja \
        -DCMAKE_BUILD_TYPE=Debug -DCMAKE_PREFIX_PATH="$prefix" \
        -DPACKAGE="zrVOMGUI$suffix" "$@"
    cmake --build "$build"
    run_program "$build/$program"
}

# with_pkgconfig PROGRAM PACKAGE: a plain call of the compiler.
with_pkgconfig()
{
    local program=$1 package=$2$suffix build=$work/$1-pkgconfig libdir flags
    rm -rf "$build"
    mkdir -p "$build"
    libdir=$(dirname "$(find "$prefix" -name "$package.pc")" | sed 's,/pkgconfig$,,')
    export PKG_CONFIG_PATH=$libdir/pkgconfig
    read -ra flags < <(pkg-config --cflags --libs "$package")
    [[ $(pkg-config --modversion "$package") == 1.* ]] || fail "$package.pc tells no version"
    # Libraries stand behind what needs them; their dependencies are found beside them.
    ${CXX:-c++} -std=c++17 "$(dirname "${BASH_SOURCE[0]}")/$program/main.cpp" "${flags[@]}" \
        -Wl,-rpath,"$libdir" -o "$build/$program"
    run_program "$build/$program"
}

# as_subdirectory SOURCE BUILD [cmake arguments]: a host with the library's sources among its own.
as_subdirectory()
{
    local source=$1 build=$2
    shift 2
    rm -rf "$build"
    cmake -S "$(dirname "${BASH_SOURCE[0]}")/subdirectory" -B "$build" -G Ninja \
        -DSOURCE="$source" "$@"
    cmake --build "$build"
    prefix=$build run_program "$build/model"
}

# as_documented ROOT: the host that the pages in ROOT lead to. It would wait for somebody to close it.
as_documented()
{
    local build=$work/documented
    rm -rf "$build"
    mkdir -p "$build"
    sed -n '/^## Five steps/,/^\*\*3\./p' "$1/docs/hosting.md" | code_blocks cmake \
        >"$build/CMakeLists.txt"
    sed -n '/^## A host program/,/^## /p' "$1/README.md" | code_blocks cpp >"$build/main.cpp"
    sed -i "s/find_package(zrVOMGUI /find_package(zrVOMGUI$suffix /" "$build/CMakeLists.txt"
    cmake -S "$build" -B "$build" -G Ninja -DCMAKE_PREFIX_PATH="$prefix"
    cmake --build "$build"
    [[ -x $build/myhost ]] || fail "The pages lead to no host"
}

code_blocks()
{
    awk -v fence="^\`\`\`$1\$" '/^```$/ { inside = 0 } inside { print } $0 ~ fence { inside = 1 }'
}

run_program()
{
    local program=$1 linked
    "$program"
    linked=$(ldd "$program")
    if grep 'not found' <<<"$linked"; then
        fail "$program lacks libraries"
    fi
    grep -F "$(readlink -f "$prefix")" <<<"$linked" | grep -q libzrVOM ||
        fail "$program runs with another library than the installed one: $linked"
    if [[ $(basename "$program") == model ]] &&
        grep -E 'libQt[56](Gui|Widgets)|libzrGUI|libzrVOMGUI' <<<"$linked"; then
        fail "A model takes widgets with it"
    fi
}
