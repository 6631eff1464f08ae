# Sourced by ./run and ./test, which set `root`: packages, configuring, building.

# Runs a command quietly; what it printed is shown only if it fails.
quietly()
{
    local log status=0
    log=$(mktemp)
    "$@" >"$log" 2>&1 || status=$?
    if ((status != 0)); then
        cat "$log" >&2
    fi
    rm -f "$log"
    return "$status"
}

# The packages of packages.txt before the first group, and those of the named groups.
wanted_packages()
{
    awk -v groups=" $* " '
        BEGIN { wanted = 1 }
        { sub(/#.*/, ""); gsub(/[[:space:]]/, "") }
        /^\[.*\]$/ { wanted = index(groups, " " substr($0, 2, length($0) - 2) " "); next }
        wanted && /./' "$root/packages.txt"
}

missing_packages()
{
    local wanted
    mapfile -t wanted < <(wanted_packages "$@")
    # dpkg-query fails when it knows nothing of some package: that one is missing, then.
    { dpkg-query -W -f '${db:Status-Status} ${Package}\n' "${wanted[@]}" 2>/dev/null || true; } |
        sed -n 's/^installed //p' | sort |
        comm -13 - <(printf '%s\n' "${wanted[@]}" | sort)
}

# install_packages [GROUP...]
install_packages()
{
    if ! command -v dpkg-query >/dev/null; then
        echo "Not a Debian system: taking the packages of packages.txt as installed." >&2
        return
    fi
    local missing
    mapfile -t missing < <(missing_packages "$@")
    if ((${#missing[@]} == 0)); then
        return
    fi

    local as_root=()
    if ((EUID != 0)); then
        if ! command -v sudo >/dev/null; then
            echo "Install these packages first, or run this as root: ${missing[*]}" >&2
            return 1
        fi
        as_root=(sudo)
    fi
    echo "Installing ${missing[*]}"
    local apt=("${as_root[@]}" env DEBIAN_FRONTEND=noninteractive
               apt-get -qq -o DPkg::Lock::Timeout=300)
    # A list that can't be fetched need not be one that matters: installing tells.
    quietly "${apt[@]}" update || true
    quietly "${apt[@]}" install --no-install-recommends "${missing[@]}"
}

# One compiler cache for all clones, in the user's home if there is one. In which language the compiler
# warns makes no other program of it: tests, which have their own, build with the same cache.
use_compiler_cache()
{
    export CCACHE_BASEDIR=$root CCACHE_NOHASHDIR=1 CCACHE_SLOPPINESS=locale
    if [[ -z ${CCACHE_DIR:-} ]] && ! mkdir -p "${HOME:-/nonexistent}/.cache/ccache" 2>/dev/null; then
        export CCACHE_DIR=$root/build/ccache
    fi
}

# build PRESET [TARGET...]: configures and builds; without targets, everything.
build()
{
    local preset=$1
    shift
    use_compiler_cache
    (cd "$root" && quietly cmake --preset "$preset")
    local targets=()
    if (($# > 0)); then
        targets=(--target "$@")
    fi
    quietly cmake --build "$root/build/$preset" "${targets[@]}"
}

# Qt wants a private folder for its sockets. The caller removes it.
use_runtime_folder()
{
    XDG_RUNTIME_DIR=$(mktemp -d)
    export XDG_RUNTIME_DIR
}

# The sanitizers' runtimes claim fixed addresses, which a high degree of address randomisation may
# have given away. Not everywhere may a process switch that off, nor does it have to. Sets `launcher`,
# the command before the program's.
fix_addresses()
{
    launcher=()
    if setarch -R true 2>/dev/null; then
        launcher=(setarch -R)
    fi
}
