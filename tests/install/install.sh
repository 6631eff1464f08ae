#!/usr/bin/env bash
# install.sh BUILD SOURCE PREFIX QT: installs what stands in BUILD, looks at it, and moves it to PREFIX,
# where the consumers find it. From where it was installed it is gone: who remembers that, fails.
set -euo pipefail
build=$1 source=$2 prefix=$3 qt=$4
first=$prefix.first
source "$(dirname "${BASH_SOURCE[0]}")/names.sh"

# Compares two lists, and shows what is missing (-) and what is too much (+).
expect_same()
{
    diff -u --label "what is expected" --label "what is installed" "$1" "$2" ||
        fail "The list of $3 differs"
}

public_headers()
{
    (cd "$source/src" && find zrVOMGUI -name '*.h' -not -path '*/private/*' \
        -not -path 'zrVOMGUI/graph/layout/*' | sort)
}

check_libraries()
{
    local name library version
    version=$(sed -n 's/^project(zrVOMGUI VERSION \([0-9.]*\).*/\1/p' "$source/CMakeLists.txt")
    for name in {zrUtil,zrVOM,zrGUI,zrVOMGUI}"$suffix"; do
        library=$libdir/lib$name.so
        [[ $(readlink "$library") == lib$name.so.${version%%.*} &&
            $(readlink "$library.${version%%.*}") == lib$name.so.$version ]] ||
            fail "$library doesn't lead to its version, $version"
        readelf -d "$library" | grep -q "(SONAME) .*\[lib$name.so.${version%%.*}\]" ||
            fail "$library has another name inside"
        [[ -f $libdir/pkgconfig/$name.pc ]] || fail "$name.pc is missing"
    done
}

check_designer_plugin()
{
    [[ ! -e $build/plugins/designer/zrvomgui_designer.so ||
        -e $libdir/qt$qt/plugins/designer/zrvomgui_designer.so ]] || fail "Qt Designer's plugin is missing"
}

# Whatever is loaded finds the other libraries beside it, and not where they were built.
check_loading()
{
    local file
    while read -r file; do
        ! readelf -d "$file" | grep -E '\((RPATH|RUNPATH)\)' | grep -v '\[\$ORIGIN[^:]*\]' ||
            fail "$file looks for others in a fixed place"
        ! ldd "$file" | grep libzr | grep -vF " => $prefix/" | grep -vF "$file" ||
            fail "$file finds other libraries than the installed ones"
    done < <(find "$prefix" -name '*.so')
}

# Beside what is for another version of Qt: no file has the name of one of that.
check_names()
{
    [[ -z $suffix ]] || (cd "$first" && ! find . -type f -o -type l | grep -vE -e "$suffix|/qt$qt/") ||
        fail "These stand in the way of what is for another version of Qt"
}

rm -rf "$first" "$prefix"
cmake --install "$build" --prefix "$first" >/dev/null
cmake_package=$(find "$first" -name "zrVOMGUI${suffix}Config.cmake")
libdir=${cmake_package%/cmake/*}

expect_same <(public_headers) <(cd "$first/include${suffix:+/zrVOMGUI$suffix}" && find . -type f | sed 's,^\./,,' | sort) headers
check_libraries
check_designer_plugin
check_names
if grep -rIF -e "$first" -e "$build" -e "$source" "$first"; then
    fail "These name places of the machine that built them"
fi
mv "$first" "$prefix"
check_loading
