#!/usr/bin/env bash
# Builds the Debian packages, installs them into a bare Debian 12 (debootstrap) and runs what is in them there.
#   check-packages.sh [--packages FOLDER] [--keep]      as root, on Debian 12
# --packages uses existing packages instead of building them, --keep leaves the root in place and prints its path.
set -eu
. "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/setup.sh"

packages=
keep=no
while [ $# -gt 0 ]; do
    case $1 in
    --packages) packages=$(readlink -f "$2"); shift ;;
    --keep) keep=yes ;;
    *) fail "Usage: check-packages.sh [--packages FOLDER] [--keep]" ;;
    esac
    shift
done
[ "$(id -u)" = 0 ] || fail "debootstrap and chroot have to be run as root."

if [ -z "$packages" ]; then
    install_packages "${packages_build[@]}" "${packages_release[@]}"
    folder=${BUILD_DIR:-$source_dir/build/package}
    configure package "$folder"
    say "Building in $folder ..."
    ninja -C "$folder" -j "$(nproc)" >"$folder/build.log" 2>&1 || { tail -n 30 "$folder/build.log" >&2; exit 1; }
    rm -rf "$folder/packages"
    (cd "$folder" && cpack) >"$folder/cpack.log" 2>&1 || { tail -n 30 "$folder/cpack.log" >&2; exit 1; }
    packages=$folder/packages
else
    install_packages debootstrap
fi
ls "$packages"/*.deb

# The mirror that this machine uses.
mirror=$(sed -nE -e 's/^URIs: *([^ ]*debian)\/? *$/\1/p' -e 's/^deb (\[[^]]*\] )?([^ ]*debian)\/? bookworm .*/\2/p' \
    /etc/apt/sources.list /etc/apt/sources.list.d/* 2>/dev/null | head -n 1)
work=$(mktemp -d /var/tmp/zu-packages.XXXXXX)
root=$work/root
clean_up() {
    local at
    for at in dev/shm proc; do umount "$root/$at" 2>/dev/null || true; done
    if [ $keep = yes ]; then
        say "The root stays in $root"
    elif ! grep -q " $root" /proc/mounts; then # never delete what is still mounted
        rm -rf "$work"
    fi
}
trap clean_up EXIT
say "Making a Debian 12 in $root from ${mirror:=http://deb.debian.org/debian} ..."
debootstrap --variant=minbase bookworm "$root" "$mirror" >"$work/debootstrap.log" 2>&1 ||
    { tail -n 20 "$work/debootstrap.log" >&2; fail "debootstrap failed."; }
mount -t proc proc "$root/proc"
mount -t tmpfs tmpfs "$root/dev/shm"
printf '#!/bin/sh\nexit 101\n' >"$root/usr/sbin/policy-rc.d" # no service may start in there
chmod +x "$root/usr/sbin/policy-rc.d"
for file in "$packages"/*.deb; do cp "$file" "$root/var/cache/"; done
cp -r "$source_dir/tests/system/outsidePlugin" "$root/srv/outside"

inside() { chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive \
    "${proxies[@]}" HOME=/root "$@"; }
proxies=()
for name in http_proxy https_proxy no_proxy; do [ -z "${!name:-}" ] || proxies+=("$name=${!name}"); done
# as_user COMMAND: what a person does, with a time limit.
as_user() { inside setpriv --reuid=1000 --regid=1000 --clear-groups env HOME=/home/user timeout 300 bash -euc "cd; $1"; }
install() { inside apt-get install -y -qq --no-install-recommends "$@" >"$work/apt.log" 2>&1 ||
    { tail -n 30 "$work/apt.log" >&2; fail "apt-get could not install $*"; }; }
deb() { local file; for file in "$root"/var/cache/"$1"_*.deb; do echo "/var/cache/$(basename "$file")"; done; }
expect() { grep -qE -- "$1" "$2" || { cat "$2" >&2; fail "$2 has no line like \"$1\"."; }; }
has_no() { ! inside dpkg-query -W -f '${db:Status-Abbrev}\n' "$1" 2>/dev/null | grep -q '^ii' || fail "$1 was installed."; }

inside apt-get update -qq
inside useradd -m -u 1000 user

say "== zutof: the command line by itself"
install "$(deb libzucore1)" "$(deb zutof)"
for package in libqt6gui6 libqt6widgets6 libgl1 libx11-6; do has_no "$package"; done
as_user "tof --help" >"$work/help"
expect '^Usage: tof' "$work/help"
as_user "tof record --camera wave --frames 2 room.tif && tof process --transform depth room.tif depth.tif &&
    tof cloud --lens --frame 0 room.tif room.ply && tof image --frame 1 depth.tif depth.png && tof info room.tif"
head -c 400 "$root/home/user/room.ply" >"$work/ply"
expect '^element vertex [1-9][0-9]{4,}' "$work/ply"
expect PNG "$root/home/user/depth.png"

say "== zuviewer"
install "$(deb zuviewer)"
as_user "zuviewer -platform offscreen --version" >"$work/version"
expect '^zuviewer [0-9.]+$' "$work/version"
as_user "QT_QPA_PLATFORM=offscreen zuviewer --camera 2 --frames 3" >"$work/offscreen" 2>&1 || cat "$work/offscreen"
expect "ToF Images Visualization.* loaded from /usr/lib/" "$work/offscreen"
for file in applications/zuviewer.desktop icons/hicolor/scalable/apps/zuviewer.svg mime/packages/zuviewer.xml \
    man/man1/zuviewer.1 man/man1/tof.1 bash-completion/completions/zuviewer bash-completion/completions/tof; do
    [ -s "$root/usr/share/$file" ] || fail "/usr/share/$file is missing."
done

say "== zuviewer on an X server"
install xvfb xauth
as_user "xvfb-run -a -s '-screen 0 1600x1000x24' zuviewer --camera 0 --size 1600x1000 --frames 20 \
    --screenshot window.png --screenshot-3d scene.png --export-ply live.ply" >"$work/x11" 2>&1 || { cat "$work/x11"; exit 1; }
expect 'platform: xcb' "$work/x11"

say "== zuviewer under Wayland"
install weston
as_user "export XDG_RUNTIME_DIR=\$(mktemp -d)
    weston --backend=headless-backend.so --socket=zu --width=1600 --height=1000 --idle-time=0 >weston.log 2>&1 &
    for _ in \$(seq 300); do [ -S \$XDG_RUNTIME_DIR/zu ] && break; sleep 0.1; done
    WAYLAND_DISPLAY=zu QT_QPA_PLATFORM=wayland zuviewer --camera 0 --frames 10 --screenshot-3d wayland.png
    kill %1" >"$work/wayland" 2>&1 || { cat "$work/wayland"; exit 1; }
expect 'platform: wayland' "$work/wayland"

say "== libzucore-dev: a plug-in of somebody else"
install "$(deb libzucore-dev)" cmake ninja-build g++
as_user "cmake -S /srv/outside -B outside -G Ninja >cmake.log 2>&1 && ninja -C outside >>cmake.log 2>&1 || { cat cmake.log; exit 1; }
    QT_QPA_PLATFORM=offscreen zuviewer --plugin-path outside/liboutside.so --camera 2 --frames 3" >"$work/outside" 2>&1 ||
    { cat "$work/outside"; exit 1; }
expect "outside plug-in initialised" "$work/outside"

say "== removal"
inside apt-get purge -y -qq libzucore1 >"$work/apt.log" 2>&1
left=$(find "$root/usr" "$root/etc" \( -path "$root/usr/share/doc/*" -o -name '*zuviewer*' -o -name '*zuCore*' -o \
    -name '*zplToF*' -o -name 'zuhostsdk' -o -name 'tof' -o -name 'tof.1*' \) \( -name '*zu[vCh]*' -o -name '*zpl*' -o -name 'tof*' \))
[ -z "$left" ] || fail "Left behind: $left"

pictures=${BUILD_DIR:-$source_dir/build}/check-packages
mkdir -p "$pictures"
cp "$root"/home/user/{window,scene,wayland,depth}.png "$pictures"
say "The packages install, run and go again. What the programs showed is in $pictures"
