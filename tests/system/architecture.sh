#!/usr/bin/env bash
# Checks docs/architecture.md against the tree: every path it names exists, every function it names is in a file that
# the same paragraph names, and the picture matches its source. Of the other pages it checks the paths.
#   architecture.sh SOURCE_DIR
set -u
cd "$1" || exit 1
page=docs/architecture.md
bad=0
paths=0
functions=0
complain() {
    printf '%s\n' "$*"
    bad=1
}

# One line a paragraph or list item.
paragraphs() { awk '/^ *$|^ *[-|]|^ *[0-9]+\. |^#/ { if (p != "") print p; p = "" } { p = p " " $0 } END { print p }' "$page"; }

# has FILE NAME: NAME is Owner::function; a source defines it with its owner, a header declares it in it.
has() {
    local file=$1 owner=${2%::*} function=${2##*::}
    grep -qE "\b${owner##*::}\b" "$file" && grep -qE "\b$function(<[^>]*>)?\(" "$file"
}

while read -r line; do
    mapfile -t spans < <(grep -oE '`[^`]+`' <<<"$line" | tr -d '`')
    files=()
    for span in "${spans[@]}"; do
        [[ $span =~ ^[A-Za-z0-9_.-]+(/[A-Za-z0-9_.{},-]+)+/?$ ]] || continue
        for path in $(eval "echo $span"); do
            paths=$((paths + 1))
            [ -e "$path" ] || complain "$page names $path, which is not there."
            [ ! -f "$path" ] || files+=("$path")
        done
    done
    for span in "${spans[@]}"; do
        [[ $span =~ ^[A-Za-z0-9_]+(::[A-Za-z0-9_]+)+$ ]] || continue
        functions=$((functions + 1))
        found=no
        for file in "${files[@]}"; do has "$file" "$span" && found=yes; done
        [ $found = yes ] || complain "$page names $span, which is in none of: ${files[*]:-no file of that paragraph}"
    done
done < <(paragraphs)

# The rooms named in the picture, and the picture itself, of which the source is the text.
while read -r label; do
    for room in $(grep -oE '\b(host|hostsdk|sim|plugins|tools)/[A-Za-z0-9_/]+' <<<"$label"); do
        [ -d "$room" ] || complain "docs/architecture.dot names $room, which is not there."
    done
    while read -r text; do
        text=$(sed 's/-/\&#45;/g' <<<"$text")
        grep -qF -- ">$text<" docs/architecture.svg ||
            complain "docs/architecture.svg does not show \"$text\": dot -Tsvg docs/architecture.dot -o docs/architecture.svg"
    done < <(sed 's/\\n/\n/g' <<<"$label")
done < <(grep -v '^ *//' docs/architecture.dot | grep -oE 'label="[^"]+"' | sed -E 's/^label="(.*)"$/\1/')

# But for a room that a worked example makes up and a folder of the build.
while IFS=: read -r other path; do
    [ -e "$path" ] || [[ $path =~ ^(host/viewer/panels/notes|docs/sdk)$ ]] || complain "$other names $path, which is not there."
done < <(grep -oE '`(hostsdk|host|sim|plugins|tools|tests|bench|fuzz|docs|scripts|packaging|cmake)/[A-Za-z0-9_./-]+`' README.md CONTRIBUTING.md \
    docs/sdk.md $(find hostsdk host sim plugins tools tests bench fuzz scripts packaging -name README.md) | tr -d '`')

# A page without code spans, or spans in another form, would pass unread.
[ $paths -ge 25 ] && [ $functions -ge 20 ] ||
    complain "$page names only $paths paths and $functions functions; this test no longer reads it."
[ $bad = 0 ] && echo "$paths paths and $functions functions are where $page says."
exit $bad
