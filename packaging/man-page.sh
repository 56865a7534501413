#!/usr/bin/env bash
# Replaces the line @OPTIONS@ of a manual page by the options that the program prints with --help.
#   man-page.sh TEMPLATE VERSION PAGE PROGRAM
set -eu
template=$1 version=$2 page=$3 program=$4
# Leaks are reported by the tests of a sanitizer build, not here.
help=$(ASAN_OPTIONS=detect_leaks=0 LC_ALL=C.UTF-8 LANGUAGE=C "$program" --help)
options=$(awk '
    function out(text) { gsub(/\\/, "\\e", text); gsub(/-/, "\\-", text); sub(/^[.\047]/, "\\\\\\&&", text); return text }
    /^Options:/ { inside = 1; next }
    /^[^ ]/ { inside = 0 }
    inside && /^  -/ {
        sub(/^ +/, "")
        cut = match($0, /  +/)
        name = cut ? substr($0, 1, cut - 1) : $0
        print ".TP\n.B " out(name)
        if (cut) print out(substr($0, cut + RLENGTH))
        next
    }
    inside && NF { sub(/^ +/, ""); print out($0) }
' <<<"$help")
[ -n "$options" ] || { echo "$program --help names no options." >&2; exit 1; }
while IFS= read -r line; do
    if [ "$line" = "@OPTIONS@" ]; then printf '%s\n' "$options"; else printf '%s\n' "${line//@VERSION@/$version}"; fi
done <"$template" >"$page"
