#!/usr/bin/env bash
# Monkey test: random mouse and key events in a viewer built with the sanitizers.
#   scripts/random-use.sh [SECONDS [SEED]]      300 seconds and a seed of the clock by default
# Exits with 0 when the viewer survived, responded and closed without a sanitizer report; otherwise the report, the last
# events and a screenshot are in the folder printed at the end. The same seed gives the same events, though their timing
# relative to the viewer varies. BUILD_DIR: the build folder, build/asan by default. Not part of CI.
#
# Needs xvfb, openbox, xdotool and imagemagick. Must run as root: viewer and window manager run as "nobody" with a
# temporary home, which is also their current folder, so that no file dialog can write anywhere else.
set -u
: "${BUILD_DIR:=$(dirname "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")")/build/asan}"
. "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/setup.sh"

seconds=${1:-300}
seed=${2:-$(date +%s)}
viewer=$build_dir/bin/zuviewer
[ "$(id -u)" = 0 ] || fail "Run this as root in a container: only then can the viewer run as a user who can write nowhere else."
[ -x "$viewer" ] || fail "$viewer has not been built: cmake --preset asan && ninja -C build/asan zuviewer zplToF tof"
for program in Xvfb openbox xdotool import setpriv python3; do
    command -v "$program" >/dev/null || fail "$program is missing."
done

work=$(mktemp -d /tmp/random-use.XXXXXX)
trap stop_servers EXIT
start_xvfb 1920x1200x24
mkdir "$work/home"
chown -R nobody "$work"
chmod 755 "$work"
export HOME=$work/home
# Disables everything that hides windows or starts other programs.
sed -E 's/NLIMC/NLMC/; s/name="(Iconify|ToggleShowDesktop|ShadeLower|ToggleShade|Shade|SendToDesktop|GoToDesktop|ShowMenu|Execute)"/name="Focus"/' \
    /etc/xdg/openbox/rc.xml >"$work/openbox.xml"
setpriv --reuid=nobody --regid=nogroup --clear-groups openbox --config-file "$work/openbox.xml" >"$work/openbox.log" 2>&1 &
servers+=($!)

if [ -x "$build_dir/bin/tof" ]; then
    (cd "$work/home" && "$build_dir/bin/tof" record --frames 12 wave.tif && "$build_dir/bin/tof" record --camera grey \
        --frames 12 grey.tif) >"$work/record.log" 2>&1
fi
chown -R nobody "$work"
export LC_ALL=C.UTF-8 LIBGL_ALWAYS_SOFTWARE=1 QT_QPA_PLATFORM=xcb
unset XDG_CONFIG_HOME XDG_RUNTIME_DIR WAYLAND_DISPLAY QT_SCALE_FACTOR
export ASAN_OPTIONS=detect_leaks=1:verify_asan_link_order=0:handle_abort=1:allocator_may_return_null=1:log_path=$work/report
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1:log_path=$work/report
export LSAN_OPTIONS=suppressions=$source_dir/tests/support/lsan.supp:print_suppressions=0
# Unloaded libraries would have no symbols in a leak report: dlclose does nothing.
echo 'int dlclose(void *handle) { (void)handle; return 0; }' | cc -shared -fPIC -o "$work/keep.so" -x c - ||
    fail "cc could not build $work/keep.so."
export RANDOM_USE_PRELOAD=$work/keep.so
python3 "$source_dir/scripts/random-use.py" "$viewer" "$work" "$seconds" "$seed"
code=$?
if [ $code = 0 ]; then
    rm -rf "$work"
else
    say "seed $seed: see $work"
fi
exit $code
