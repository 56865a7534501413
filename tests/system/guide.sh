#!/usr/bin/env bash
# Checks the documents against the tree: every link and picture they name exists, every picture of the guide is used,
# and the programs accept every command line shown.
#   guide.sh SOURCE_DIR BUILD_DIR
set -u
source_dir=$1
build_dir=$2
bad=0
checked=0
complain() {
    printf '%s\n' "$*"
    bad=1
}

pages=("$source_dir"/README.md "$source_dir"/CONTRIBUTING.md "$source_dir"/CHANGELOG.md "$source_dir"/docs/sdk.md "$source_dir"/docs/architecture.md
    "$source_dir"/docs/guide/*.md)

# Anchors are made from headings: lower case, hyphens for blanks, other characters removed.
anchors() { sed -nE 's/^#+ +//p' "$1" | tr '[:upper:]' '[:lower:]' | sed -E 's/[^a-z0-9 _-]//g; s/ /-/g'; }

for page in "${pages[@]}"; do
    while read -r target; do
        [[ $target =~ ^(https?|mailto): ]] && continue
        file=${target%%#*}
        file=${file:+$(dirname "$page")/$file}
        file=${file:-$page}
        checked=$((checked + 1))
        [ -e "$file" ] || { complain "${page#"$source_dir"/} names $target, which does not exist."; continue; }
        [[ $target != *#* ]] || anchors "$file" | grep -qxF -- "${target#*#}" ||
            complain "${page#"$source_dir"/} names $target, but that page has no such heading."
    done < <(grep -oE '\]\([^) ]+\)' "$page" | sed -E 's/^\]\((.*)\)$/\1/')
done
for picture in "$source_dir"/docs/guide/images/*.png; do
    grep -qF "images/$(basename "$picture")" "$source_dir"/docs/guide/*.md || complain "No page shows ${picture#"$source_dir"/}."
    grep -qE "(^| )$(basename "$picture" .png)( |\$)" "$source_dir/docs/screenshots.sh" ||
        complain "docs/screenshots.sh does not take ${picture#"$source_dir"/}."
done

# Lines of code blocks that call a program of ours, with or without variables set before it; a backslash continues a
# line.
commands() {
    sed -E ':join; /\\$/ { N; s/ *\\\n */ /; b join }' "${pages[@]}" |
        sed -nE 's/^ {4,}(([A-Z_0-9]+=[^ ]*|xvfb-run -a) )*((tof|zuviewer|\.\/run|\.\/test)( .*)?)$/\3/p' | sed -E 's/ +#.*//'
}
while read -r line; do
    checked=$((checked + 1))
    read -ra words <<<"$line"
    case ${words[0]} in
    tof | zuviewer)
        # With --help everything before it is still parsed: an unknown option or command is an error.
        "$build_dir/bin/${words[0]}" "${words[@]:1}" --help >/dev/null 2>"$build_dir/guide.log" ||
            complain "The documents show \"$line\", but: $(cat "$build_dir/guide.log")"
        ;;
    ./run | ./test)
        [ -x "$source_dir/${words[0]}" ] || complain "The documents show \"$line\", but there is no ${words[0]}."
        ;;
    esac
done < <(commands)
rm -f "$build_dir/guide.log"

# Each command and option of tof is in its manual page and its completion.
for name in $("$build_dir/bin/tof" --help | sed -nE '/^Commands:/,/^$/s/^  ([a-z]+) .*/\1/p'); do
    grep -qE "^\.SS $name" "$source_dir/tools/tof/tof.1" || complain "tools/tof/tof.1 does not explain \"tof $name\"."
    for option in $("$build_dir/bin/tof" "$name" --help | grep -oE '^  (-[a-z], )?--[a-z0-9-]+' | grep -oE -- '--[a-z0-9-]+'); do
        [ "$option" = --help ] || sed 's/\\-/-/g' "$source_dir/tools/tof/tof.1" | grep -qF -- "$option" ||
            complain "tools/tof/tof.1 does not name $option of \"tof $name\"."
        grep -qF -- "$option" "$source_dir/tools/tof/tof.bash" || complain "tools/tof/tof.bash does not know $option."
    done
    checked=$((checked + 1))
done
[ $checked -ge 40 ] || complain "Only $checked things were found to check; the script has lost its way."
[ $bad = 0 ] && echo "The documents say what is true: $checked checks."
exit $bad
