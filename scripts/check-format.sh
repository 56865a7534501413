#!/usr/bin/env bash
# Lists the sources that clang-format would change; fails when there are any.
set -u
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.." || exit 1
find hostsdk host sim plugins tools tests bench fuzz \( -name '*.h' -o -name '*.cpp' \) -print0 |
    xargs -0 -n 40 clang-format --dry-run -Werror
