# Shared by run.sh, test.sh and .ci/run, which source it: finds the checkout, installs the Debian packages
# that a step needs, configures and builds. Everything it says goes to standard error.

talibis_root=$(dirname -- "$(dirname -- "$(readlink -f -- "${BASH_SOURCE[0]}")")")

talibis_packages=(g++ cmake ninja-build libcli11-dev nlohmann-json3-dev libtomlplusplus-dev libgtest-dev
    libbenchmark-dev pkgconf)

talibis_say() {
    printf 'talibis: %s\n' "$*" >&2
}

# Installs those of the named packages that are missing. A system without dpkg is taken as it is: there
# CMake tells what it does not find.
talibis_require_packages() {
    command -v dpkg-query >/dev/null || return 0
    local installed package missing=() as_root=()
    installed=$(dpkg-query -W -f='${db:Status-Status} ${Package}\n' "$@" 2>/dev/null) || true
    for package in "$@"; do
        [[ $'\n'$installed$'\n' == *$'\n'"installed $package"$'\n'* ]] || missing+=("$package")
    done
    ((${#missing[@]})) || return 0

    if ((EUID != 0)); then
        if ! command -v sudo >/dev/null; then
            talibis_say "these packages are missing: ${missing[*]}"
            talibis_say "install them as root: apt-get install ${missing[*]}"
            return 1
        fi
        as_root=(sudo)
    fi
    talibis_say "installing ${missing[*]}"
    talibis_quietly "${as_root[@]}" apt-get -q -o DPkg::Lock::Timeout=300 update &&
        talibis_quietly "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q -y \
            -o DPkg::Lock::Timeout=300 install --no-install-recommends "${missing[@]}"
}

# Runs a command with its output kept back; shows it only if the command fails.
talibis_quietly() {
    local log status=0
    log=$(mktemp)
    "$@" >"$log" 2>&1 </dev/null || status=$?
    if ((status != 0)); then
        cat -- "$log" >&2
        talibis_say "failed with status $status: $*"
    fi
    rm -f -- "$log"
    return "$status"
}

# Makes a locale whose decimal point is a comma, for the tests that a number reads alike in every locale, and
# has the programs that follow find it.
talibis_make_locale() {
    talibis_require_packages locales || return
    local folder=$talibis_root/build/locale
    if [[ ! -d $folder/de_DE.UTF-8 ]] && command -v localedef >/dev/null; then
        mkdir -p -- "$folder"
        talibis_quietly localedef --no-archive -i de_DE -f UTF-8 "$folder/de_DE.UTF-8" || return
    fi
    export LOCPATH=$folder
}

# A build tree counts as configured when its last configuration succeeded for this very checkout; one that
# came along with a copied or moved checkout does not.
talibis_is_configured() {
    [[ -f $talibis_root/build/$1/build.ninja ]] &&
        grep -qxF "CMAKE_HOME_DIRECTORY:INTERNAL=$talibis_root" "$talibis_root/build/$1/CMakeCache.txt"
}

# talibis_build PRESET TARGET: installs, configures and builds as far as anything is missing.
talibis_build() {
    local preset=$1 target=$2
    talibis_require_packages "${talibis_packages[@]}" || return
    mkdir -p -- "$talibis_root/build"
    (
        # Two calls at once must not build in the same tree.
        flock 9
        cd -- "$talibis_root" || exit
        if ! talibis_is_configured "$preset"; then
            talibis_say "first build, this takes a while"
            talibis_quietly cmake --fresh --preset "$preset" || exit
        fi
        talibis_quietly cmake --build --preset "$preset" --target "$target" --parallel "$(nproc)"
    ) 9>"$talibis_root/build/.lock"
}
