#!/usr/bin/env bash
# Names every source that clang-format would change; ends non-zero when there is one.
set -u
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.." || exit 1
find hostsdk host sim plugins tools tests bench fuzz \( -name '*.h' -o -name '*.cpp' \) -print0 |
    xargs -0 -n 40 clang-format --dry-run -Werror
