#!/usr/bin/env bash
# fuzz.sh [SECONDS] [TARGET...]: builds the fuzz targets with clang's
# libFuzzer (and the address and undefined-behaviour sanitizers) into
# build-fuzz and runs each for SECONDS (default 300). New inputs collect in
# build-fuzz/tests/fuzz/found-TARGET; crashes are written to the current folder.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
seconds=${1:-300}
shift || true
dir="$root/build-fuzz"
CC=clang CXX=clang++ "$root/scripts/build.sh" "$dir" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DKESTRANE_FUZZ=ON -DKESTRANE_SANITIZE=ON
fuzz="$dir/tests/fuzz"
"$root/scripts/fuzz-avi-seeds.sh" "$fuzz/avi-seeds"
targets=("$@")
if ((${#targets[@]} == 0)); then
  mapfile -t targets < <(ls "$dir/bin" | grep '^fuzz_')
fi
export ASAN_OPTIONS=detect_leaks=0:abort_on_error=1
export KESTRANE_RESOURCES="$dir/resources" KESTRANE_LOG_QUIET=1
status=0
for target in "${targets[@]}"; do
  program="$dir/bin/$target"
  seeds=$(ctest --test-dir "$dir" -N -V -R "^${target}_short\$" | sed -n 's/.*Test command: //p' | awk '{print $NF}')
  echo "== $target for ${seconds}s (seeds: $seeds)"
  mkdir -p "$fuzz/found-$target"
  if ! "$program" -max_total_time="$seconds" -timeout=10 "$fuzz/found-$target" "$seeds"; then
    status=1
  fi
done
exit $status
