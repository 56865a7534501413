#!/usr/bin/env bash
# Runs clang-tidy over the sources of a build folder and ends non-zero when it finds anything.
#   check-tidy.sh [--changed] [BUILD_DIR]       BUILD_DIR: a folder where everything has been built
# --changed checks only the sources that differ from origin/main (there: from the previous commit), then those that
# include a changed header. TIDY_JOBS: number of parallel jobs, 2 by default. TIDY_SECONDS: after that time no further
# source is started; those left out are listed.
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

# compile_commands.json also lists generated sources below the build folder; those are not ours to fix.
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
        echo "not checked, out of time: $2"
        return 0
    fi
    # clang-tidy counts suppressed warnings on its standard error.
    clang-tidy -p "$1" --quiet "$2" 2>/dev/null
}
export -f look_at
deadline=$(($(date +%s) + ${TIDY_SECONDS:-0}))
export deadline
printf '%s\0' "${sources[@]}" | xargs -0 -n 1 -P "${TIDY_JOBS:-2}" bash -c 'look_at "$@"' look_at "$build" || {
    echo "clang-tidy found something." >&2
    exit 1
}
