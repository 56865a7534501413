#!/usr/bin/env bash
# Checks the contents of the packages, without building any: which file is in which component, that the menu entry,
# the icon and the manual pages are valid, and that the version is the same everywhere.
#   packages.sh SOURCE_DIR BUILD_DIR
set -u
source_dir=$1
build_dir=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
bad=0
complain() {
    printf '%s\n' "$*"
    bad=1
}

# component NAME REGEX...: the component installs a file for each expression, and no other file.
component() {
    local name=$1 file expression
    shift
    cmake --install "$build_dir" --prefix "$work/$name" --component "$name" >"$work/log" 2>&1 || {
        cat "$work/log"
        complain "Component $name cannot be installed."
    }
    (cd "$work/$name" && find . \( -type f -o -type l \) -printf '%P\n' | sort) >"$work/$name.files"
    for expression in "$@"; do
        grep -qE "^$expression\$" "$work/$name.files" || complain "Component $name has no file like $expression."
    done
    while read -r file; do
        for expression in "$@"; do [[ $file =~ ^$expression$ ]] && continue 2; done
        complain "Component $name has $file, which is not expected there."
    done <"$work/$name.files"
}
version=$(sed -nE 's/^project\(.* VERSION ([0-9.]+).*/\1/p' "$source_dir/CMakeLists.txt")
major=${version%%.*}
lib='lib(/[a-z0-9_-]+)?'
component core "$lib/libzuCore\.so\.$version" "$lib/libzuCore\.so\.$major"
component runtime "$lib/libzuCoreGui\.so\.$version" "$lib/libzuCoreGui\.so\.$major" bin/zuviewer \
    "$lib/zuviewer/plugins/libzplToF\.so" libexec/zuviewer/zuPluginProbe share/applications/zuviewer\.desktop share/mime/packages/zuviewer\.xml \
    share/icons/hicolor/scalable/apps/zuviewer\.svg 'share/icons/hicolor/([0-9]+)x\1/apps/zuviewer\.png' \
    share/bash-completion/completions/zuviewer share/man/man1/zuviewer\.1 share/doc/zuviewer/CHANGELOG\.md \
    'share/doc/zuviewer/guide/[a-z-]+\.md' share/doc/zuviewer/guide/README\.md 'share/doc/zuviewer/guide/images/[a-z0-9-]+\.png'
component tof bin/tof share/man/man1/tof\.1 share/bash-completion/completions/tof
component sdk 'include/zuhostsdk/zuCore(Gui)?/[A-Za-z]+\.h' "$lib/libzuCore\.so" "$lib/libzuCoreGui\.so" \
    "$lib/cmake/ZuHostSdk/ZuHostSdkConfig\.cmake" "$lib/cmake/ZuHostSdk/ZuHostSdkConfigVersion\.cmake" \
    "$lib/cmake/ZuHostSdk/ZuHostSdkTargets(-[a-z]+)?\.cmake"

# What the desktop is told.
desktop=$work/runtime/share/applications/zuviewer.desktop
desktop-file-validate "$desktop" || complain "The menu entry is not valid, or desktop-file-utils is not installed."
key() { sed -nE "s/^$1=//p" "$desktop"; }
[ -x "$work/runtime/bin/$(key TryExec)" ] || complain "The menu entry starts $(key TryExec), which is not installed."
[ "$(key Exec | cut -d' ' -f1)" = "$(key TryExec)" ] || complain "The menu entry starts another program than it looks for."
[ -f "$work/runtime/share/icons/hicolor/scalable/apps/$(key Icon).svg" ] || complain "The menu entry's icon is not installed."
for type in $(key MimeType | tr ';' ' '); do
    [[ $type == image/* ]] || grep -q "type=\"$type\"" "$work/runtime/share/mime/packages/zuviewer.xml" ||
        complain "The menu entry names the type $type, which is not defined."
done
for size in 16 24 32 48 64 128 256; do
    # Width and height are the 17th to 24th byte of a PNG file.
    found=$(od -An -tu1 -j16 -N8 "$work/runtime/share/icons/hicolor/${size}x${size}/apps/zuviewer.png" |
        awk '{ print $3 * 256 + $4 "x" $7 * 256 + $8 }')
    [ "$found" = "${size}x$size" ] || complain "The icon of size $size is $found."
done

# Manual pages and versions. The options of Qt stand beside those that need no screen, as `run` gives them.
export LD_LIBRARY_PATH=$build_dir/lib
[ "$("$work/runtime/bin/zuviewer" -platform offscreen --version 2>&1)" = "zuviewer $version" ] ||
    complain "The installed viewer does not tell its version."
"$work/runtime/bin/zuviewer" --style fusion -platform offscreen --list-cameras | grep -q sim:wave ||
    complain "The installed viewer does not list its cameras."
for page in "$work/runtime/share/man/man1/zuviewer.1" "$work/tof/share/man/man1/tof.1"; do
    grep -qE "^\.TH [A-Z]+ 1 .*$version" "$page" || complain "$page is not of version $version."
    ! grep -q '@[A-Z]*@' "$page" || complain "$page has a place that was not filled in."
done
for option in $("$build_dir/bin/zuviewer" --help | grep -oE '^  (-[a-z], )?--[a-z0-9-]+' | grep -oE -- '--[a-z0-9-]+'); do
    sed 's/\\-/-/g' "$work/runtime/share/man/man1/zuviewer.1" | grep -qE -- "^\.B .*$option( |\$)" ||
        complain "The manual page of zuviewer does not name $option."
done
grep -qE "^## \[$version\]" "$source_dir/CHANGELOG.md" || complain "CHANGELOG.md says nothing of version $version."
for number in Major:1 Minor:2 Patch:3; do
    expected=$(echo "$version" | cut -d. -f"${number#*:}")
    grep -qE "kZuCoreVersion${number%:*} = $expected;" "$source_dir/hostsdk/include/zuCore/zuCoreVersion.h" ||
        complain "zuCoreVersion.h has another ${number%:*} than $version."
done
[ $bad = 0 ] && echo "The packages are made of $(cat "$work"/*.files | wc -l) files."
exit $bad
