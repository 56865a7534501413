#!/usr/bin/env bash
# Takes new texts of the sources into the files that translators edit, and texts that are gone out of them. What is
# new stands there as "unfinished" until somebody translates it (Qt Linguist, or any editor).
set -euo pipefail
cd "$(dirname "$0")/.."
lupdate=${LUPDATE:-$(command -v lupdate || echo /usr/lib/qt6/bin/lupdate)}

"$lupdate" hostsdk host sim/camera -I . -locations none -no-obsolete -ts host/viewer/translations/zuviewer_de.ts
# In English only what has a singular and a plural.
"$lupdate" hostsdk host sim/camera -I . -locations none -no-obsolete -pluralonly -source-language en -target-language en \
    -ts host/viewer/translations/zuviewer_en.ts
"$lupdate" plugins/zplToF -I . -locations none -no-obsolete -ts plugins/zplToF/translations/zplToF_de.ts
