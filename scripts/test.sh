#!/bin/sh
# Installs the dependencies, builds and runs the whole test suite, then
# prints the lines of tests against the lines of code. In CI (CI=true), or
# with ZARVANE_SANITIZER_RUNS=1, the suite then also runs under
# AddressSanitizer with UndefinedBehaviorSanitizer (build-asan) and under
# ThreadSanitizer (build-tsan); ZARVANE_SANITIZER_RUNS=0 skips them.
# Exits non-zero when any run fails or the tests outgrow the code.
set -e
cd "$(dirname "$0")/.."
ROOT="$(pwd)"
scripts/install-deps.sh
export QT_QPA_PLATFORM=offscreen
JOBS="$(nproc)"
# The tests mostly wait on sockets and the simulator: two per core keep the
# cores busy without starving any of them.
TEST_JOBS=$((JOBS * 2))

# build-dir timeout-seconds [cmake options...]: builds and runs the suite.
suite() {
    dir="$1"; timeout="$2"; shift 2
    start=$(date +%s)
    echo "== $dir: build"
    scripts/build.sh "$dir" "$@" || return 1
    built=$(date +%s)
    echo "== $dir: tests"
    status=0
    (cd "$dir" && ctest --output-on-failure --timeout "$timeout" -j"$TEST_JOBS") || status=1
    echo "== $dir: built in $((built - start)) s, tests ran in $(($(date +%s) - built)) s"
    return $status
}

SANITIZER_RUNS="${ZARVANE_SANITIZER_RUNS:-}"
if [ -z "$SANITIZER_RUNS" ]; then
    [ "${CI:-}" = "true" ] && SANITIZER_RUNS=1 || SANITIZER_RUNS=0
fi

failed=""
suite build 600 || failed="$failed normal"

if [ "$SANITIZER_RUNS" = "1" ]; then
    # A sanitizer report fails the test that caused it. Debian's Qt is not
    # instrumented: LeakSanitizer needs full unwinding to name Qt's frames in
    # its suppressions, and ThreadSanitizer ignores the memory Qt's own code
    # allocates and frees (our hand-offs through Qt's event queue are
    # annotated). The benchmarks are not built there.
    ASAN_OPTIONS="detect_leaks=1:halt_on_error=1:detect_stack_use_after_return=0:fast_unwind_on_malloc=0" \
    UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1:suppressions=$ROOT/tests/ubsan.supp" \
    LSAN_OPTIONS="suppressions=$ROOT/tests/lsan.supp:print_suppressions=0" \
        suite build-asan 1200 -DZARVANE_SANITIZE=ON -DZARVANE_BUILD_BENCHMARKS=OFF \
        || failed="$failed asan"

    TSAN_OPTIONS="suppressions=$ROOT/tests/tsan.supp:halt_on_error=1:second_deadlock_stack=1:report_signal_unsafe=0:ignore_noninstrumented_modules=1" \
        suite build-tsan 1200 -DZARVANE_TSAN=ON -DZARVANE_BUILD_BENCHMARKS=OFF \
        || failed="$failed tsan"
fi

echo "== lines of tests against lines of code"
scripts/linecount.sh || failed="$failed linecount"

if [ -n "$failed" ]; then
    echo "failed:$failed"
    exit 1
fi
echo "all runs passed"
