# Shared by run, test and .ci/run (sourced): packages, build folder, display servers.

source_dir=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd -P)
# As an absolute path: cmake runs in the source folder, everything else in the current one.
build_dir=$(readlink -m -- "${BUILD_DIR:-$source_dir/build/release}")

packages_build=(g++ cmake ninja-build qt6-base-dev qt6-3d-dev libqt6opengl6-dev qt6-tools-dev
    qt6-tools-dev-tools qt6-l10n-tools libgl-dev libhwy-dev libtiff-dev libpng-dev)
packages_run=(libgl1-mesa-dri qt6-qpa-plugins qt6-wayland qt6-translations-l10n fonts-dejavu-core)
packages_headless=(xvfb xauth)
packages_test=(libgtest-dev libgmock-dev libbenchmark-dev weston xdotool binutils file desktop-file-utils)
# For packages, the SDK reference and the pictures of the guide; neither run nor test needs them.
packages_release=(dpkg-dev fakeroot debootstrap doxygen xdotool imagemagick librsvg2-bin)
packages_ci=(clang clang-format clang-tidy libclang-rt-14-dev doxygen python3)

say() { printf '%s\n' "$*"; }
fail() { printf '%s\n' "$*" >&2; exit 1; }

# Installs those of the named Debian packages that are missing.
install_packages() {
    local missing=() package
    for package in "$@"; do
        dpkg-query -W -f '${db:Status-Abbrev}\n' "$package" 2>/dev/null | grep -q '^ii' || missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    command -v apt-get >/dev/null || fail "These Debian packages are missing and there is no apt-get to install them: ${missing[*]}"
    local as_root=()
    if [ "$(id -u)" != 0 ]; then
        command -v sudo >/dev/null || fail "Missing Debian packages: ${missing[*]}. Install them as root, or install sudo."
        as_root=(sudo)
    fi
    say "Installing Debian packages: ${missing[*]}"
    "${as_root[@]}" apt-get update -qq || say "apt-get update failed; trying with the package lists at hand."
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null ||
        fail "apt-get could not install: ${missing[*]}. With --no-install this step is skipped."
}

# configure PRESET FOLDER [cmake options]: only where nothing is configured yet, or options are given.
configure() {
    local preset=$1 folder=$2
    shift 2
    if [ -f "$folder/build.ninja" ] && [ $# -eq 0 ]; then
        return 0
    fi
    mkdir -p "$folder" || fail "The build folder $folder cannot be made. Name a writable one with BUILD_DIR."
    local log=$folder/configure.log
    (cd "$source_dir" && cmake --preset "$preset" -B "$folder" "$@") >"$log" 2>&1 || {
        tail -n 30 "$log" >&2
        fail "cmake failed; the whole log is $log"
    }
}

servers=()
stop_servers() {
    local pid
    for pid in "${servers[@]}"; do kill "$pid" 2>/dev/null; done
    for pid in "${servers[@]}"; do wait "$pid" 2>/dev/null; done
    servers=()
    [ -n "${runtime_dir:-}" ] && rm -rf "$runtime_dir"
}

# Starts an X server on a free display number; sets DISPLAY.
start_xvfb() {
    local number_file
    number_file=$(mktemp)
    Xvfb -displayfd 3 -screen 0 "${1:-1600x1000x24}" -nolisten tcp +extension GLX 3>"$number_file" >/dev/null 2>&1 &
    servers+=($!)
    for _ in $(seq 100); do
        [ -s "$number_file" ] && break
        sleep 0.1
    done
    [ -s "$number_file" ] || fail "Xvfb did not start."
    DISPLAY=:$(tr -d '[:space:]' <"$number_file")
    export DISPLAY
    rm -f "$number_file"
}

# Starts a headless Wayland compositor; sets XDG_RUNTIME_DIR and WAYLAND_DISPLAY.
start_weston() {
    runtime_dir=$(mktemp -d)
    chmod 700 "$runtime_dir"
    export XDG_RUNTIME_DIR=$runtime_dir WAYLAND_DISPLAY=zu-wayland
    # This compositor has no seat, and Qt 6.4 dereferences the input method of the first seat whenever it draws the
    # cursor of an empty line edit. The built-in input method avoids the seat.
    export QT_IM_MODULE=compose
    weston --backend=headless-backend.so --socket="$WAYLAND_DISPLAY" --width=1600 --height=1000 --idle-time=0 \
        >"$runtime_dir/weston.log" 2>&1 &
    servers+=($!)
    for _ in $(seq 100); do
        [ -S "$runtime_dir/$WAYLAND_DISPLAY" ] && return 0
        sleep 0.1
    done
    cat "$runtime_dir/weston.log" >&2
    fail "weston did not start."
}
