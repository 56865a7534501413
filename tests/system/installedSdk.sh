#!/usr/bin/env bash
# Installs the build, builds a third-party plug-in against the installed SDK, and has the installed viewer load it
# together with its own.
#   installedSdk.sh SOURCE_DIR BUILD_DIR
set -eu
source_dir=$1
build_dir=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cmake --install "$build_dir" --prefix "$work/usr" >"$work/install.log"
cmake -S "$source_dir/tests/system/outsidePlugin" -B "$work/build" -G Ninja -DCMAKE_PREFIX_PATH="$work/usr" >"$work/configure.log" ||
    { cat "$work/configure.log"; exit 1; }
cmake --build "$work/build" >"$work/build.log" || { cat "$work/build.log"; exit 1; }

# The installed files must find each other: no path leads into the build tree.
unset LD_LIBRARY_PATH QT_PLUGIN_PATH
QT_QPA_PLATFORM=offscreen timeout 60 "$work/usr/bin/zuviewer" --settings "$work/settings.ini" \
    --plugin-path "$work/build/liboutside.so" --camera 2 --frames 3 >"$work/viewer.log" 2>&1 ||
    { cat "$work/viewer.log"; echo "The installed viewer failed."; exit 1; }
grep -q "outside plug-in initialised" "$work/viewer.log" ||
    { cat "$work/viewer.log"; echo "The installed viewer did not load the outside plug-in."; exit 1; }
grep -q "ToF Images Visualization" "$work/viewer.log" ||
    { cat "$work/viewer.log"; echo "The installed viewer did not load its own plug-in."; exit 1; }
! grep -q "unchecked" "$work/viewer.log" ||
    { cat "$work/viewer.log"; echo "The installed viewer does not find its plug-in probe."; exit 1; }

# The same library, corrupted: refused with its name and a reason, and the viewer keeps running.
head -c 3000 "$work/build/liboutside.so" >"$work/libbroken.so"
QT_QPA_PLATFORM=offscreen timeout 60 "$work/usr/bin/zuviewer" --settings "$work/settings.ini" \
    --plugin-path "$work/libbroken.so" --camera 2 --frames 3 >"$work/viewer.log" 2>&1 ||
    { cat "$work/viewer.log"; echo "A broken plug-in took the viewer down."; exit 1; }
grep -q "libbroken.so" "$work/viewer.log" ||
    { cat "$work/viewer.log"; echo "The refusal does not name the file."; exit 1; }
