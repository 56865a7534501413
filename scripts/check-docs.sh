#!/usr/bin/env bash
# Generates the reference of the host SDK (HTML, doxygen); fails when anything in it is undocumented or wrong.
#   check-docs.sh [FOLDER]      writes the pages to FOLDER; without it they are only checked
set -eu
ZU_SOURCE_DIR=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd -P)
command -v doxygen >/dev/null || { echo "doxygen is not installed (Debian: apt-get install doxygen)." >&2; exit 1; }
ZU_VERSION=$(sed -nE 's/^project\(.* VERSION ([0-9.]+).*/\1/p' "$ZU_SOURCE_DIR/CMakeLists.txt")
if [ $# -gt 0 ]; then
    ZU_REFERENCE_DIR=$1
else
    ZU_REFERENCE_DIR=$(mktemp -d)
    trap 'rm -rf "$ZU_REFERENCE_DIR"' EXIT
fi
mkdir -p "$ZU_REFERENCE_DIR"
export ZU_SOURCE_DIR ZU_VERSION ZU_REFERENCE_DIR
doxygen "$ZU_SOURCE_DIR/docs/Doxyfile"
echo "The reference is complete${1:+: $1/html/index.html}."
