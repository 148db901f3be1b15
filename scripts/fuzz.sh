#!/bin/sh
# Builds the libFuzzer targets with clang into build-fuzz and runs each for a
# fixed time, starting from the committed corpus. New interesting inputs go to
# build-fuzz/corpus/<target> (copy the ones worth keeping to tests/fuzz/corpus/);
# a crash leaves its input in build-fuzz/findings/ and fails the script.
# Usage: scripts/fuzz.sh [seconds per target, default 60] [target...]
set -e
cd "$(dirname "$0")/.."
SECONDS_PER_TARGET="${1:-60}"
[ $# -gt 0 ] && shift
TARGETS="${*:-transporter canresponse pids troublecodes vehicleinfo monitortests oxygentests scantool}"
BUILD=build-fuzz

CC=clang CXX=clang++ cmake -S . -B "$BUILD" -G Ninja -DZARVANE_FUZZ=ON \
    -DZARVANE_BUILD_TESTS=OFF -DZARVANE_BUILD_APP=OFF >/dev/null
for target in $TARGETS; do
    ninja -C "$BUILD" "fuzz_$target" >/dev/null
done

mkdir -p "$BUILD/findings"
failed=""
for target in $TARGETS; do
    corpus="$BUILD/corpus/$target"
    mkdir -p "$corpus"
    echo "== fuzz_$target for ${SECONDS_PER_TARGET} s"
    if ! "$BUILD/tests/fuzz/fuzz_$target" -max_total_time="$SECONDS_PER_TARGET" \
            -timeout=10 -rss_limit_mb=2048 -print_final_stats=1 \
            -artifact_prefix="$BUILD/findings/$target-" \
            "$corpus" "tests/fuzz/corpus/$target" 2>"$BUILD/fuzz_$target.log"; then
        failed="$failed $target"
        tail -40 "$BUILD/fuzz_$target.log"
    fi
    grep -E "^stat::(number_of_executed_units|new_units_added)" "$BUILD/fuzz_$target.log" || true
done
if [ -n "$failed" ]; then
    echo "fuzzing found problems in:$failed (inputs in $BUILD/findings/)"
    exit 1
fi
echo "no findings"
