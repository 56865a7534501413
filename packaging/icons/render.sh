#!/usr/bin/env bash
# Draws the icon in the sizes that desktops ask for (rsvg-convert, Debian: librsvg2-bin). To be run after a
# change of zuviewer.svg; the pictures are kept beside it, so that a build needs no SVG renderer.
set -eu
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")"
for size in 16 24 32 48 64 128 256; do
    rsvg-convert -w $size -h $size -o zuviewer-$size.png zuviewer.svg
done
