#!/usr/bin/env bash
# Holds the dependency arrows of the tree: who includes whom, and what the built libraries need and export.
#   check-layering.sh SOURCE_DIR [BUILD_DIR]
set -u
cd "$1" || exit 1
build=${2:-}
bad=0
complain() {
    printf '%s\n' "$*"
    bad=1
}

# may ROOM REGEX: every quoted include of the room's sources has to match. Generated ui_*.h and moc files and
# headers of the same folder without a path are always fine.
may() {
    local room=$1 allowed=$2 file name
    [ -d "$room" ] || { complain "There is no room $room."; return; }
    while IFS=: read -r file name; do
        [[ $name =~ ^(ui_[a-zA-Z0-9]+\.h|[^/]+\.moc)$ ]] && continue
        [ -e "$(dirname "$file")/$name" ] || [ -e "$room/$name" ] && [ "$name" != CkToFPlugin.h ] && continue
        [[ $name =~ ^($allowed) ]] || complain "$file includes \"$name\", which $room may not know."
    done < <(find "$room" ${3:-} \( -name '*.h' -o -name '*.cpp' \) -print0 |
        xargs -0 -r grep -HoE '^ *#include +"[^"]+"' | sed -E 's/^([^:]+): *#include +"([^"]+)"/\1:\2/')
}

core='zuCore/'
gui='zuCore/|zuCoreGui/'
may hostsdk/include/zuCore "$core"
may hostsdk/include/zuCoreGui "$gui"
may hostsdk/picture "$core|picture/"
may host/core "$core|core/"
may host/recording "$core|recording/"
may host/coregui "$gui|coregui/"
may host/viewer "$gui|viewer/|recording/|camera/|sim/camera/"
may tools/tof "$core|recording/|camera/|synth/|pic/|cloud/|chain/|tof/"
may sim/synth "$core|synth/"
may sim/camera "$core|synth/|camera/"
may plugins/zplToF/pic "$core|pic/"
may plugins/zplToF/cloud "$core|pic/|cloud/"
may plugins/zplToF/chain "$core|pic/|chain/"
may plugins/zplToF/opticalpath "$gui|opticalpath/"
may plugins/zplToF/view3d "$gui|pic/|cloud/|opticalpath/|view3d/"
may plugins/zplToF/calibration "$gui|pic/|view3d/|calibration/"
may plugins/zplToF/integration "$gui|pic/|chain/|view3d/|calibration/|integration/"
may plugins/zplToF "CkToFPlugin\.h|$gui|chain/|view3d/|integration/|translations/" "-maxdepth 1"

# Debuggers, logs and crash reports name classes of anonymous namespaces, too.
while read -r hit; do
    complain "A class of the plug-in begins with CkToF: $hit"
done < <(grep -rnE '^ *class +[A-Za-z0-9_]+ *(final *)?(:[^:]|\{)' plugins/zplToF | grep -vE 'class +CkToF')

# Qt modules that a pure room must not know.
no_gui() {
    local hits
    hits=$(grep -rnE '#include +<(QWidget|QImage|QColor|QPainter|QApplication|QGuiApplication|Qt3D)' "$1")
    [ -z "$hits" ] || complain "$1 is to work without a window, but: $hits"
}
for room in hostsdk/picture host/core host/recording sim tools/tof plugins/zplToF/pic plugins/zplToF/cloud; do no_gui $room; done

# XML of others goes through one guarded reader.
hits=$(grep -rnE 'setContent\(|QXmlStreamReader' hostsdk host sim plugins tools --include='*.cpp' --include='*.h' |
    grep -v '^host/core/CkXmlReader.cpp:')
[ -z "$hits" ] || complain "XML is to be read with CkXmlReader, but: $hits"

# needs FILE REGEX: every library the file asks the loader for has to match.
needs() {
    local file=$1 allowed=$2 name
    [ -e "$file" ] || { complain "$file was not built."; return; }
    while read -r name; do
        [[ $name =~ ^($allowed|libstdc\+\+|libm|libgcc_s|libc|ld-linux|libpthread|libasan|libubsan|libtsan) ]] ||
            complain "$file needs $name."
    done < <(readelf -d "$file" | sed -nE 's/.*\(NEEDED\).*\[(.*)\]/\1/p')
}
if [ -n "$build" ]; then
    plugin=$build/lib/zuviewer/plugins/libzplToF.so
    needs "$build/lib/libzuCore.so" 'libQt6Core|libQt6Xml'
    needs "$build/lib/libzuCoreGui.so" 'libzuCore\.|libQt6(Core|Xml|Gui|Widgets)|libGL|libOpenGL'
    needs "$build/bin/tof" 'libzuCore\.|libQt6(Core|Xml)|libtiff|libhwy'
    needs "$plugin" 'libzuCore\.|libzuCoreGui\.|libQt6|libQt63D|libGL|libOpenGL|libEGL|libhwy'
    needs "$build/bin/zuviewer" 'libzuCore\.|libzuCoreGui\.|libQt6(Core|Xml|Gui|Widgets)|libGL|libOpenGL|libEGL|libtiff'
    exported=$(nm -D --defined-only "$plugin" | awk '{print $NF}' | sed 's/@.*//' | sort | xargs)
    [ "$exported" = "qt_plugin_instance qt_plugin_query_metadata_v2" ] ||
        complain "$plugin exports more or less than the two entry points of a Qt plug-in: $exported"
fi
[ $bad = 0 ] && echo "The layers hold."
exit $bad
