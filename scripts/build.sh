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
  # Lets ccache reuse objects built with the precompiled common headers.
  export CCACHE_SLOPPINESS="${CCACHE_SLOPPINESS:-pch_defines,time_macros,include_file_mtime,include_file_ctime}"
fi
cmake -S "$root" -B "$dir" -G Ninja "${launcher[@]}" "$@" >/dev/null
cmake --build "$dir" --parallel "$(nproc)"
