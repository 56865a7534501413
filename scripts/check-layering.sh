#!/usr/bin/env bash
# Checks what the compiler cannot see of the dependency arrows: what the built libraries need and export.
#   check-layering.sh SOURCE_DIR [BUILD_DIR]
set -u
cd "$1" || exit 1
build=${2:-}
bad=0
complain() {
    printf '%s\n' "$*"
    bad=1
}

# The compiler finds a header only below a room that the target links (zu_room in cmake/ZuBuild.cmake), but a relative
# include would bypass that.
hits=$(grep -rnE '#include +"' hostsdk host sim plugins tools tests bench fuzz --include='*.h' --include='*.cpp' |
    grep -vE '"(zuCore|zuCoreGui|hostsdk|host|sim|plugins|tools|tests|bench|fuzz)/|"ui_[a-zA-Z0-9]+\.h"|"[^/"]+\.moc"')
[ -z "$hits" ] || complain "An include is written as the path from the root of the tree, but: $hits"

# Also those in anonymous namespaces: debuggers, logs and crash reports show their names.
while read -r hit; do
    complain "A class of the plug-in begins with CkToF: $hit"
done < <(grep -rnE '^ *class +[A-Za-z0-9_]+ *(final *)?(:[^:]|\{)' plugins/zplToF | grep -vE 'class +CkToF')

# Foreign XML is read only through the guarded reader.
hits=$(grep -rnE 'setContent\(|QXmlStreamReader' hostsdk host sim plugins tools --include='*.cpp' --include='*.h' |
    grep -v '^host/core/CkXmlReader.cpp:')
[ -z "$hits" ] || complain "XML is to be read with CkXmlReader, but: $hits"

# needs FILE REGEX: every library that the file loads must match.
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
    needs "$build/bin/tof" 'libzuCore\.|libQt6(Core|Xml)|libtiff|libpng16|libhwy'
    needs "$plugin" 'libzuCore\.|libzuCoreGui\.|libQt6|libQt63D|libGL|libOpenGL|libEGL|libhwy'
    needs "$build/bin/zuviewer" 'libzuCore\.|libzuCoreGui\.|libQt6(Core|Xml|Gui|Widgets)|libGL|libOpenGL|libEGL|libtiff'
    exported=$(nm -D --defined-only "$plugin" | awk '{print $NF}' | sed 's/@.*//' | sort | xargs)
    [ "$exported" = "qt_plugin_instance qt_plugin_query_metadata_v2" ] ||
        complain "$plugin exports more or less than the two entry points of a Qt plug-in: $exported"
fi
[ $bad = 0 ] && echo "The layers hold."
exit $bad
