# shellcheck shell=bash
# What demo, test and bench share; they source this file.
# Each step is one line on the screen; its full output goes to build/log.

set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
root=$PWD
tool=${0##*/}
log_folder=$root/build/log
status_line=false
[[ -t 1 && ${TERM:-dumb} != dumb ]] && status_line=true

trap 'echo; echo "Interrupted. Run ./$tool again to go on."; exit 130' INT TERM

# fail <line>...: the last words of a run that can't go on.
fail()
{
    printf '%s\n' "$@"
    exit 1
}

# Passes a step's output on to its log. On a terminal, counters such as [12/80] are shown beside the step's name.
follow()
{
    local text=$1 log=$2 line
    if ! $status_line; then
        cat > "$log"
        return
    fi
    while IFS= read -r line || [[ -n $line ]]; do
        printf '%s\n' "$line" >&3
        if [[ $line =~ ^\[([0-9]+/[0-9]+)\] || $line =~ ^\ *([0-9]+/[0-9]+)\ Test ]]; then
            printf '\r%s ... %s\033[K' "$text" "${BASH_REMATCH[1]}"
        fi
    done 3> "$log"
}

# try_step <text> <log name> <command>...: runs the command and says how it went; its exit status is the command's.
try_step()
{
    local text=$1 log=$log_folder/$2.log begin=$SECONDS code=0
    shift 2
    mkdir -p "$log_folder"
    $status_line && printf '%s ...' "$text"
    "$@" < /dev/null 2>&1 | follow "$text" "$log" || code=$?
    $status_line && printf '\r\033[K'
    if ((code == 0)); then
        printf '%s: done, %d s\n' "$text" $((SECONDS - begin))
    else
        printf '%s: failed after %d s\n' "$text" $((SECONDS - begin))
    fi
    return $code
}

# step <text> <log name> <command>...: the same; a failure shows the end of the log and ends the run.
step()
{
    try_step "$@" && return
    tail -n 40 "$log_folder/$2.log" | sed 's/^/    /'
    fail "./$tool stopped at: $1. The whole output is in ${log_folder#"$root"/}/$2.log."
}

# One run at a time works in build/: two builds in one folder would trample on each other.
lock()
{
    mkdir -p build
    exec 9> build/.lock
    if ! flock --nonblock 9; then
        echo "Another demo, test or bench is at work in this folder; waiting for it to end."
        flock 9
    fi
}

# one_of <package>|<package>...: the first that is installed or that the distribution has; all of them while nothing is
# known of what it has.
one_of()
{
    local name
    for name in ${1//|/ }; do
        if [[ -z $(missing "$name") ]] || apt-cache show "$name" > /dev/null 2>&1; then
            echo "$name"
            return
        fi
    done
    echo "$1"
}

# packages <need>...: the packages of these lines of the list.
packages()
{
    local need names name
    while read -r need names; do
        [[ " $* " == *" $need "* ]] || continue
        for name in $names; do
            if [[ $name == *'|'* ]]; then one_of "$name"; else echo "$name"; fi
        done
    done < tools/packages
}

# missing <package>...: those that aren't installed.
missing()
{
    local present
    present=$(dpkg-query --show --showformat '${db:Status-Status} ${Package}\n' "$@" 2> /dev/null || true)
    local name
    for name; do
        grep --quiet --line-regexp --fixed-strings "installed $name" <<< "$present" || echo "$name"
    done
}

apt()
{
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8 apt-get --quiet --assume-yes \
        -o DPkg::Lock::Timeout=600 -o Acquire::Retries=2 -o Acquire::http::Timeout=20 "$@"
}

install_packages()
{
    # What an interrupted installation left half done is finished first.
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive dpkg --configure -a
    # A source of packages that can't be reached matters only if one of ours is missing for it.
    apt update || true
    local name names=()
    for name; do
        names+=("$(one_of "$name")")
    done
    apt install --no-install-recommends "${names[@]}"
}

# need <need>...: makes sure that the packages for it are there; installs the missing ones.
need()
{
    local wanted absent
    mapfile -t wanted < <(packages "$@")
    if ! command -v dpkg-query > /dev/null || ! command -v apt-get > /dev/null; then
        echo "This is no Debian or Ubuntu: install what corresponds to these packages yourself:"
        echo "  ${wanted[*]}"
        return
    fi
    mapfile -t absent < <(missing "${wanted[@]}")
    ((${#absent[@]} == 0)) && return

    local command="apt-get update && apt-get install ${absent[*]}"
    as_root=()
    if (($(id -u) != 0)); then
        command -v sudo > /dev/null || fail "Packages are missing, and only root may install them. Run this as root:" \
            "  $command"
        as_root=(sudo)
        # Ask for the password, if there is one, before the output goes to a file.
        if [[ -t 0 ]]; then
            sudo --validate || fail "Packages are missing, and sudo refused. Run this as root:" "  $command"
        else
            as_root=(sudo --non-interactive)
            sudo --non-interactive true 2> /dev/null ||
                fail "Packages are missing, and sudo wants a password. Run this as root:" "  $command"
        fi
    fi

    echo "Missing packages: ${absent[*]}"
    try_step "Installing packages" packages install_packages "${absent[@]}" && return
    if grep --quiet --extended-regexp "Could not resolve|Temporary failure|Could not connect|Cannot initiate|Unable to \
connect|Connection (failed|refused|timed out)|Network is unreachable" "$log_folder/packages.log"; then
        fail "The packages can't be fetched: there is no network, or it doesn't reach the package server." \
            "Run ./$tool again when it is back, or run this as root: $command"
    fi
    tail -n 12 "$log_folder/packages.log" | sed 's/^/    /'
    fail "The packages could not be installed; build/log/packages.log says why. They are: ${absent[*]}"
}

# configure <preset>: makes build/<preset> ready to build. Its options are the same for every script, so that none
# undoes another's work.
configure()
{
    local preset=$1 cache=build/$1/CMakeCache.txt launcher="" strict=() unity=ON
    command -v ccache > /dev/null && launcher=ccache
    # Whoever builds it gets a library whatever a new compiler warns about; the check of a change takes no warning.
    [[ -z ${CI:-} ]] || strict=(-DGUIGL_WERROR=ON)
    # Tests of what is not built would be missed by nobody.
    [[ $tool != test ]] || strict+=(-DGUIGL_EVERY_HOST=ON)
    # What is measured is what others build; and clang-tidy is to see sources, not what includes them.
    [[ $preset != bench && $preset != tidy ]] || unity=OFF
    # CMake refuses a build folder that was copied or moved here with the tree.
    if [[ -f $cache ]] &&
        ! grep --quiet --line-regexp --fixed-strings "CMAKE_HOME_DIRECTORY:INTERNAL=$root" "$cache"; then
        rm -rf "build/$preset"
    fi
    step "Configuring $preset" "$preset-configure" \
        cmake --preset "$preset" "-DGUIGL_UNITY=$unity" "-DCMAKE_CXX_COMPILER_LAUNCHER=$launcher" "${strict[@]}"
}

# build <preset> <target>
build()
{
    step "Building $1" "$1-build" cmake --build "build/$1" --target "$2"
}
