#!/usr/bin/env bash
# build.sh DIR [cmake options...]: configures (once) and builds into DIR.
# Uses ccache when it is installed, so rebuilds in several checkouts share work.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
dir=$1; shift
launcher=()
if command -v ccache >/dev/null 2>&1; then
  launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache -DCMAKE_C_COMPILER_LAUNCHER=ccache)
  export CCACHE_BASEDIR="${CCACHE_BASEDIR:-$(dirname "$root")}"
fi
cmake -S "$root" -B "$dir" -G Ninja "${launcher[@]}" "$@" >/dev/null
cmake --build "$dir" --parallel "$(nproc)"
