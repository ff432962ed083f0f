#!/usr/bin/env bash
# Installs what is missing, builds Kestrane twice (plain, and with address and
# undefined-behaviour sanitizers) and runs every test of both builds.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/setup.sh"

jobs=$(nproc)
status=0
for variant in plain asan; do
  dir="$root/build-test-$variant"
  options=(-DCMAKE_BUILD_TYPE=RelWithDebInfo)
  if [ "$variant" = asan ]; then
    options=(-DCMAKE_BUILD_TYPE=Debug -DKESTRANE_SANITIZE=ON -DKESTRANE_FUZZ=ON)
  fi
  echo "== Building ($variant)"
  "$root/scripts/build.sh" "$dir" "${options[@]}"
  echo "== Testing ($variant)"
  export ASAN_OPTIONS=detect_leaks=0:abort_on_error=1
  export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
  # The conversion matrix and the reliability cases check what the tools
  # make of many sources and situations; under the sanitizers they would
  # only run the same tool commands slower. The fuzz targets are built (and
  # run for a short time) in the sanitizer build only.
  exclude=()
  if [ "$variant" = asan ]; then exclude=(-LE 'matrix|reliability'); fi
  if ! ctest --test-dir "$dir" --output-on-failure --parallel "$jobs" --timeout 600 "${exclude[@]}"; then
    status=1
  fi
done
exit $status
