#!/usr/bin/env bash
# Runs clang-tidy over the sources of a build folder and ends non-zero when it finds anything.
#   check-tidy.sh [--changed] [BUILD_DIR]       BUILD_DIR: a folder where everything has been built
# --changed leaves out what is as on origin/main (or, there, as in the commit before): it looks at the sources that
# differ, then at those that include a header that differs. TIDY_JOBS: how many at a time, 2 unless set. TIDY_SECONDS:
# no source is begun later than that; those left out are named.
set -u
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.." || exit 1
changed=no
if [ "${1:-}" = --changed ]; then
    changed=yes
    shift
fi
build=$(readlink -f "${1:-${BUILD_DIR:-build/release}}")
commands=$build/compile_commands.json
[ -f "$commands" ] || {
    echo "There is no $commands; build first, or name the build folder." >&2
    exit 2
}

# The compiler's list holds generated sources too; those below the build folder are nobody's to mend.
mapfile -t sources < <(sed -n 's/^ *"file": "\(.*\)",\{0,1\}$/\1/p' "$commands" | grep -v "^$build/" | sort -u)

if [ $changed = yes ]; then
    base=$(git merge-base HEAD origin/main 2>/dev/null || git rev-parse HEAD)
    [ "$base" != "$(git rev-parse HEAD)" ] || base=$(git rev-parse -q --verify 'HEAD~1' || git rev-parse HEAD)
    mapfile -t differing < <(git diff --name-only --diff-filter=d "$base" -- '*.h' '*.cpp')
    own=()
    including=()
    for source in "${sources[@]}"; do
        for file in "${differing[@]}"; do
            if [ "$source" = "$PWD/$file" ]; then
                own+=("$source")
                continue 2
            fi
        done
        for file in "${differing[@]}"; do
            if [[ $file == *.h ]] && grep -qE "#include .*[\"/<]$(basename "$file")[\">]" "$source"; then
                including+=("$source")
                continue 2
            fi
        done
    done
    sources=("${own[@]}" "${including[@]}")
fi

echo "clang-tidy on ${#sources[@]} sources"
[ ${#sources[@]} -gt 0 ] || exit 0
look_at() {
    if [ -n "${TIDY_SECONDS:-}" ] && [ "$(date +%s)" -ge "$deadline" ]; then
        echo "not looked at for want of time: $2"
        return 0
    fi
    # On its standard error clang-tidy counts what it has left out.
    clang-tidy -p "$1" --quiet "$2" 2>/dev/null
}
export -f look_at
deadline=$(($(date +%s) + ${TIDY_SECONDS:-0}))
export deadline
printf '%s\0' "${sources[@]}" | xargs -0 -n 1 -P "${TIDY_JOBS:-2}" bash -c 'look_at "$@"' look_at "$build" || {
    echo "clang-tidy found something." >&2
    exit 1
}
