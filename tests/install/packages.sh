#!/usr/bin/env bash
# packages.sh SOURCE BUILD VERSION QT [cmake arguments]: builds the Debian packages in BUILD, looks into
# them, and unpacks them into a root of their own, against which the consumers are built.
set -euo pipefail
source=$1 build=$2 version=$3 qt=$4
shift 4
work=$build/consumers root=$build/root prefix=$build/root/usr
source "$(dirname "${BASH_SOURCE[0]}")/consume.sh"

architecture=$(dpkg --print-architecture)
libdir=usr/lib/$(dpkg-architecture -qDEB_HOST_MULTIARCH)
qt_dev=qtbase5-dev
if [[ $qt == 6 ]]; then
    qt_dev=qt6-base-dev
fi
declare -A names=([library]=libzrvomgui${suffix:+$suffix-}${version%%.*}
    [dev]=libzrvomgui$suffix-dev [designer]=zrvomgui$suffix-designer)

package_file()
{
    echo "$build/packages/${names[$1]}_${version}_$architecture.deb"
}

# expect_field PACKAGE FIELD PATTERN...
expect_field()
{
    local package=$1 field=$2 text pattern
    shift 2
    text=$(dpkg-deb --field "$(package_file "$package")" "$field")
    for pattern; do
        grep -qE "(^|, )$pattern(,|$)" <<<"$text" || fail "${names[$package]}: $field is $text"
    done
}

# expect_control PACKAGE FILE PATTERN: what the package manager does with it, or tells others.
expect_control()
{
    local package=$1 file=$2 pattern=$3
    dpkg-deb --ctrl-tarfile "$(package_file "$package")" | tar -xO "./$file" | grep -qE "$pattern" ||
        fail "${names[$package]}: $file lacks $pattern"
}

# expect_files PACKAGE PATTERN...: there is a file for each pattern, and none beside them.
expect_files()
{
    local package=$1 files pattern patterns=()
    shift
    files=$(dpkg-deb --fsys-tarfile "$(package_file "$package")" | tar -t | sed -n 's,^\./\(.*[^/]\)$,\1,p')
    for pattern in "$@" "usr/share/doc/${names[$package]}"/{copyright,changelog\\.gz}; do
        grep -qxE "$pattern" <<<"$files" || fail "${names[$package]} has no $pattern"
        patterns+=(-e "$pattern")
    done
    ! grep -vxE "${patterns[@]}" <<<"$files" || fail "${names[$package]} has more than it should"
}

rm -rf "$build/packages" "$root"
(cd "$source" && cmake --preset package -B "$build" "$@")
cmake --build "$build"
(cd "$build" && cpack)
[[ $(find "$build/packages" -maxdepth 1 -name '*.deb' | wc -l) == "${#names[@]}" ]] ||
    fail "Not as many packages as there should be"

for package in "${!names[@]}"; do
    expect_field "$package" Version "$version"
done
[[ $(for package in "${!names[@]}"; do
    dpkg-deb --field "$(package_file "$package")" Description | head -1
done | sort -u | wc -l) == "${#names[@]}" ]] || fail "Packages have the same summary"
expect_field library Section libs
expect_field dev Section libdevel
expect_field designer Section devel
soname="lib(zrUtil|zrVOM|zrGUI|zrVOMGUI)$suffix\.so"
expect_files library "$libdir/$soname\.${version%%.*}" "$libdir/$soname\.${version//./\\.}"
# As the dynamic linker's own tables tell.
expect_field library Depends 'libc6 \(>= [0-9.]+\)' 'libstdc\+\+6 \(>= [0-9.]+\)' \
    "libqt${qt}core[^ ]* \(>= $qt[^)]*\)" "libqt${qt}gui[^ ]* \(>= $qt.*" \
    "libqt${qt}widgets[^ ]* \(>= $qt[^)]*\)"
# Programs that are packaged with it depend on this version or a later one.
for soname_base in zrUtil zrVOM zrGUI zrVOMGUI; do
    expect_control library shlibs \
        "^lib$soname_base$suffix ${version%%.*} ${names[library]} \(>= ${version//./\\.}\)"
done
expect_control library triggers '^activate-noawait ldconfig$'
dpkg-deb --fsys-tarfile "$(package_file library)" |
    tar -xO "./usr/share/doc/${names[library]}/changelog.gz" | gunzip |
    dpkg-parsechangelog --file - --show-field Version | grep -qx "$version" ||
    fail "The changelog doesn't tell of $version"
expect_files dev "$libdir/$soname" "usr/include/${suffix:+zrVOMGUI$suffix/}zrVOMGUI/.*\.h" \
    "$libdir/cmake/zrVOMGUI$suffix/zrVOMGUI.*\.cmake" "$libdir/pkgconfig/zr[A-Za-z]*$suffix\.pc"
expect_field dev Depends "${names[library]} \(= $version\)" "$qt_dev \(>= $qt[0-9.]+\)"
expect_files designer "$libdir/qt$qt/plugins/designer/zrvomgui_designer\.so"
expect_field designer Depends "${names[library]} \(= $version\)" "libqt${qt}core[^ ]* \(>= $qt[^)]*\)"

for package in "${!names[@]}"; do
    dpkg-deb --extract "$(package_file "$package")" "$root"
done
while read -r library; do
    ! readelf -d "$library" | grep -E '\((RPATH|RUNPATH)\)' || fail "$library needs no such path"
done < <(find "$root" -name '*.so')

# In place of the linker's cache, which knows the system's folders alone.
export LD_LIBRARY_PATH=$root/$libdir
with_cmake widgets
with_pkgconfig widgets zrVOMGUI
with_cmake model
