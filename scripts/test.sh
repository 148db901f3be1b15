#!/bin/sh
# Installs the dependencies, builds and runs the whole test suite. With
# ZARVANE_SANITIZER_RUNS=1 the suite then also runs once under
# AddressSanitizer with UndefinedBehaviorSanitizer (build-asan) and once under
# ThreadSanitizer (build-tsan). Exits non-zero when any run fails.
#
# The sanitizer runs are not yet part of CI: their reports (leaks kept on
# purpose in death-test children, Qt's uninstrumented hand-offs) still need
# triage before they can gate a landing.
set -e
cd "$(dirname "$0")/.."
ROOT="$(pwd)"
scripts/install-deps.sh
export QT_QPA_PLATFORM=offscreen
JOBS="$(nproc)"

# build-dir timeout-seconds [cmake options...]: builds and runs the suite.
suite() {
    dir="$1"; timeout="$2"; shift 2
    echo "== $dir: build"
    scripts/build.sh "$dir" "$@" || return 1
    echo "== $dir: tests"
    (cd "$dir" && ctest --output-on-failure --timeout "$timeout" -j"$JOBS")
}

if [ "${ZARVANE_SANITIZER_RUNS:-0}" != "1" ]; then
    scripts/build.sh build
    cd build
    exec ctest --output-on-failure --timeout 300 -j"$JOBS"
fi

failed=""
suite build 300 || failed="$failed normal"

# A sanitizer report fails the test that caused it. Qt's own uninstrumented
# internals are suppressed narrowly, each entry with its reason.
ASAN_OPTIONS="detect_leaks=1:halt_on_error=1:detect_stack_use_after_return=0:fast_unwind_on_malloc=0" \
UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1:suppressions=$ROOT/tests/ubsan.supp" \
LSAN_OPTIONS="suppressions=$ROOT/tests/lsan.supp:print_suppressions=0" \
    suite build-asan 600 -DZARVANE_SANITIZE=ON || failed="$failed asan"

TSAN_OPTIONS="suppressions=$ROOT/tests/tsan.supp:halt_on_error=1:second_deadlock_stack=1:report_signal_unsafe=0" \
    suite build-tsan 900 -DZARVANE_TSAN=ON || failed="$failed tsan"

if [ -n "$failed" ]; then
    echo "failed runs:$failed"
    exit 1
fi
echo "all runs passed"
