#!/usr/bin/env bash
# Updates the .ts files from the sources: adds new texts, removes obsolete ones. New texts are marked "unfinished" until
# they are translated (Qt Linguist or any editor).
set -euo pipefail
cd "$(dirname "$0")/.."
lupdate=${LUPDATE:-$(command -v lupdate || echo /usr/lib/qt6/bin/lupdate)}

"$lupdate" hostsdk host sim/camera -I . -locations none -no-obsolete -ts host/viewer/translations/zuviewer_de.ts
# In English only texts with singular and plural.
"$lupdate" hostsdk host sim/camera -I . -locations none -no-obsolete -pluralonly -source-language en -target-language en \
    -ts host/viewer/translations/zuviewer_en.ts
"$lupdate" plugins/zplToF -I . -locations none -no-obsolete -ts plugins/zplToF/translations/zplToF_de.ts
