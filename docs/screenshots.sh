#!/usr/bin/env bash
# Retakes the pictures of the user guide from the running viewer, on a virtual screen with software OpenGL.
#   docs/screenshots.sh [NAME...]      all pictures, or only those named (first-cloud, lens-model, ...)
# BUILD_DIR names another build folder. Needs xdotool and imagemagick (packages_release in scripts/setup.sh).
set -eu
. "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/../scripts/setup.sh"
wanted=" $* "
images=$source_dir/docs/guide/images
work=$(mktemp -d)
viewer=$build_dir/bin/zuviewer
[ -x "$viewer" ] || fail "$viewer has not been built."
mkdir -p "$images"
viewer_pid=
trap 'stop_viewer; stop_servers; rm -rf "$work"' EXIT

wants() { [ "$wanted" = "  " ] || [[ $wanted == *" $1 "* ]]; }
stop_viewer() {
    [ -z "$viewer_pid" ] && return 0
    kill "$viewer_pid" 2>/dev/null || true
    wait "$viewer_pid" 2>/dev/null || true
    viewer_pid=
}
settings() { rm -f "$work/settings.ini"; [ $# = 0 ] || printf '%s\n' "$@" >"$work/settings.ini"; }

# shot NAME OPTIONS...: the viewer takes its own picture once its views have shown frames.
shot() {
    local name=$1
    shift
    wants "$name" || return 0
    timeout 200 "$viewer" --settings "$work/settings.ini" --screenshot "$work/$name.png" "$@" >"$work/$name.log" 2>&1 ||
        { cat "$work/$name.log" >&2; fail "The viewer failed at $name."; }
    keep "$name"
}
# start OPTIONS...: a viewer that stays until the next start.
start() {
    stop_viewer
    "$viewer" --settings "$work/settings.ini" "$@" >"$work/viewer.log" 2>&1 &
    viewer_pid=$!
}
# window TITLE: waits for a window whose title has these words; sets its number.
window() {
    local end=$((SECONDS + 120))
    while [ $SECONDS -lt $end ]; do
        id=$(xdotool search --onlyvisible --name "$1" 2>/dev/null | tail -n 1) && [ -n "$id" ] && return 0
        kill -0 "$viewer_pid" 2>/dev/null || break
        sleep 0.2
    done
    cat "$work/viewer.log" >&2
    fail "There is no window \"$1\"."
}
# grab NAME: the window found last, once two pictures of it are the same (or after half a minute, for live ones).
grab() {
    local before after try
    before=none
    for try in $(seq 10); do
        sleep 3
        import -window "$id" "$work/$1.png"
        after=$(md5sum <"$work/$1.png")
        [ "$after" = "$before" ] && break
        before=$after
    done
    keep "$1"
}
keep() {
    convert "$work/$1.png" -strip -colors 256 -define png:compression-level=9 "PNG8:$images/$1.png"
    say "$images/$1.png"
}

export LC_ALL=C.UTF-8 LIBGL_ALWAYS_SOFTWARE=1 QT_QPA_PLATFORM=xcb
unset WAYLAND_DISPLAY QT_SCALE_FACTOR
start_xvfb 1920x1200x24

settings
shot first-cloud --size 1700x860 --camera 0 --3d --frames 30
# The cloud in colours, as the person before has chosen them.
settings '[General]' 'ToF.LUTPseudoColor=3'
shot all-views --size 1500x860 --camera 0 --frames 40 --trigger btnToFAllViews

if wants chain; then
    # The panel alone: cut out of the window by its place there.
    shot_window=$work/all-views.png
    [ -f "$shot_window" ] || timeout 200 "$viewer" --settings "$work/settings.ini" --screenshot "$shot_window" \
        --size 1500x860 --camera 0 --frames 12 --trigger btnToFAllViews >"$work/chain.log" 2>&1
    convert "$shot_window" -crop 365x440+1135+18 +repage "$work/chain.png"
    keep chain
fi

if wants lens-model; then
    settings '[General]' 'ToF.OptCompensateDistorsion=true' 'ToF.OptRealDistandeOffsetM=0'
    start --size 1500x860 --camera 0 --3d
    window "^zuviewer"
    # "Settings..." is the first button of the 3D view's tool bar; pressed until the dialog is there.
    for x in 700 728 760 800; do
        for _ in 1 2 3 4 5; do
            xdotool mousemove $x 58 click 1
            sleep 2
            xdotool search --onlyvisible --name "3D View Settings" >/dev/null 2>&1 && break 2
        done
    done
    window "3D View Settings"
    grab lens-model
fi
if wants calibration; then
    settings
    start --size 1500x860 --camera 0 --frames 1000000 --trigger btnToFAllViews --trigger menuTofCalibrateOffset
    window "Calibrate ToF Distance Offset"
    grab calibration
fi
if wants recording; then
    settings
    "$build_dir/bin/tof" record --camera wave --frames 40 --compress "$work/room.tif"
    start --size 1700x860 --trigger menuOpenToF3dView --trigger actPlaybackLoop --trigger actPlaybackPlay "$work/room.tif"
    window "^zuviewer"
    grab recording
fi
if wants quality; then
    settings '[General]' 'ToF.LUTPseudoColor=3'
    start --size 1500x860 --camera 0 --trigger btnToFAllViews --trigger qualityDraw
    window "^zuviewer"
    # The phase shift is the view on the upper left: made the active one, then a region on a box, where the ball never comes.
    sleep 8
    xdotool mousemove 560 31 click 1
    sleep 2
    xdotool mousemove 487 247 mousedown 1 mousemove 500 255 mousemove 519 272 mouseup 1
    sleep 12
    grab quality
fi
