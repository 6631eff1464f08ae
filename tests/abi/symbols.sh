#!/usr/bin/env bash
# What a shared library of this project shows to hosts, held against the lists in this folder.
#
#   symbols.sh check FOLDER LIBRARY...    compares; prints what was added (+) and what is gone (-)
#   symbols.sh renew FOLDER LIBRARY...    writes the lists anew: ninja -C build/debug renew_symbols
#
# A line is one name that a host can link: a function, a variable, or the vtable or typeinfo of a
# class. Not listed are
# - what the compiler makes wherever it is used, so that no host needs ours: inline functions, and
#   what comes of templates. Which of these a library happens to hold depends on its optimisation.
#   Such names are weak. The members of a template that the library instantiates explicitly are weak,
#   too, but hosts may take them from here, and they are listed;
# - the marks of the linker.
set -euo pipefail
mode=$1 folder=$2
shift 2
sources=$folder/../../src/zrVOMGUI

# The names of the class templates that are instantiated explicitly, joined by |.
explicit_templates()
{
    grep -rhoE '^(extern )?template (class|struct) [^<]*<' "$sources" |
        sed -E 's/<.*//; s/.*[ :]//' | sort -u | paste -sd '|'
}

# In the words of the headers, where the compiler's are long.
shorten()
{
    perl -pe '
        BEGIN {
            # What stands between angle brackets, with the pairs in it.
            our $inner = qr/(?:[^<>]|<(??{ $inner })>)*/;
            our %field = (2 => "FieldInt", 3 => "FieldReal", 4 => "FieldString", 5 => "FieldPtr",
                          6 => "FieldRef", 11 => "MFieldPtr", 12 => "MFieldRef");
        }
        s/std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >/std::string/g;
        s/\[abi:cxx11\]//g;
        s/ZR::VOM::M?FieldT<ZR::VOM::FieldTypeT<(\d+), $inner> >/ZR::VOM::$field{$1}/g;
        s/std::vector<($inner), std::allocator<\1 ?> >/std::vector<$1>/g;
        s/std::unique_ptr<($inner), std::default_delete<\1 ?> >/std::unique_ptr<$1>/g;'
}

symbols()
{
    nm --dynamic --defined-only --demangle "$1" |
        awk -v templates="$(explicit_templates)" '
            { type = $2; name = $0; sub(/^[^ ]* . /, "", name) }
            name ~ /^(_end|_edata|__bss_start)$/ { next }
            name ~ /[{]lambda/ { next }
            type ~ /^[VWuvw]$/ {
                named = name ~ /^(vtable|typeinfo) for ZR::[^<]*$/
                instance = name ~ ("^(vtable for |typeinfo for )?ZR::[A-Za-z0-9_:]*::(" templates ")<")
                if (!named && !instance)
                    next
            }
            { print name }' |
        shorten | LC_ALL=C sort -u
}

status=0
for library; do
    list=$folder/$(basename "$library" .so | sed 's/^lib//; s/-qt6$//').symbols
    case $mode in
    renew) symbols "$library" >"$list" ;;
    check)
        diff -U 0 --label "$list" --label "$library" "$list" <(symbols "$library") || status=1
        ;;
    esac
done
if ((status != 0)); then
    echo "What hosts link has changed. If that is meant: ninja -C build/debug renew_symbols" >&2
fi
exit "$status"
