#!/usr/bin/env bash
# headers.sh PREFIX QT COMPILER: compiles each installed header alone, with all warnings as errors.
set -euo pipefail
prefix=$1 qt_version=$2 compiler=$3

# Only what is installed can be included. Qt's warnings are Qt's.
read -ra qt < <(pkg-config --cflags "Qt${qt_version}Widgets" | sed 's/-I/-isystem /g')
# A header given to the compiler is a main file, which may not say `#pragma once`: so it is included,
# and twice, since once must do.
compile()
{
    local header=$1
    shift
    printf '#include <%s>\n#include <%s>\n' "$header" "$header" |
        "$@" -x c++ -std=c++17 -fsyntax-only -fPIC -Wall -Wextra -Wpedantic -Wshadow \
            -Wnon-virtual-dtor -Werror - || {
        echo "$header doesn't compile alone" >&2
        return 1
    }
}
export -f compile

cd "$prefix/include"
if [[ $qt_version != 5 ]]; then
    cd "zrVOMGUI-qt$qt_version"
fi
find zrVOMGUI -name '*.h' -print0 | sort -z |
    xargs -0 -I HEADER bash -c 'compile "$@"' bash HEADER "$compiler" -I . "${qt[@]}"
