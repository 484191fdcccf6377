# Shared by the scripts beside it; sourced, never run.
# shellcheck shell=bash

set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"

# Compilations are cached between build trees and clones where ccache is at hand.
if command -v ccache >/dev/null; then
    export CMAKE_C_COMPILER_LAUNCHER=ccache CMAKE_CXX_COMPILER_LAUNCHER=ccache
    export CCACHE_BASEDIR=$root CCACHE_NOHASHDIR=1 CCACHE_SLOPPINESS=pch_defines,time_macros
fi

# say TEXT: a line a reader can follow the script by.
say() { printf '%s\n' "$*"; }

# fail TEXT: the end, with its reason.
fail() {
    printf '%s: %s\n' "${0##*/}" "$*" >&2
    exit 1
}

# heading TEXT: opens a section.
heading() { printf '\n== %s ==\n' "$*"; }
