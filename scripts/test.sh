#!/usr/bin/env bash
# Installs what is missing, builds Kestrane once with the address and
# undefined-behaviour sanitizers (and the fuzz targets) and runs every test
# on that build: the conversion matrix and the reliability cases too.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/setup.sh"

dir="$root/build-test"
echo "== Building (address and undefined-behaviour sanitizers)"
"$root/scripts/build.sh" "$dir" -DCMAKE_BUILD_TYPE=Debug -DKESTRANE_SANITIZE=ON -DKESTRANE_FUZZ=ON
echo "== Testing"
export ASAN_OPTIONS=detect_leaks=0:abort_on_error=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
# The tools run by the tests are Debian's, not sanitized: the sanitizers
# check Kestrane's own code, the tools' time dominates either way.
ctest --test-dir "$dir" --output-on-failure --parallel "$(nproc)" --timeout 600
