#!/bin/sh
# Pictures of every screen for a person to look at: runs the already built
# user-interface tests with ZARVANE_SCREENSHOTS set, so they save the
# window at the moments they check (and wait for the simulator's car to
# drive off for a picture of the dashboard while driving, about a minute).
# Builds nothing: build the test_harmattan target first.
#   scripts/screenshots.sh [build-dir] [gtest filter]
# The pictures go to ZARVANE_SCREENSHOTS if set, else <build-dir>/screenshots.
set -e
cd "$(dirname "$0")/.."
BUILD="${1:-build}"
FILTER="${2:-*}"
BINARY="$BUILD/tests/test_harmattan"
if [ ! -x "$BINARY" ]; then
    echo "no $BINARY: build the test_harmattan target first" >&2
    exit 1
fi
OUT="${ZARVANE_SCREENSHOTS:-$(cd "$BUILD" && pwd)/screenshots}"
mkdir -p "$OUT"
ZARVANE_SCREENSHOTS="$OUT" QT_QPA_PLATFORM="${QT_QPA_PLATFORM:-offscreen}" \
    "$BINARY" --gtest_brief=1 --gtest_filter="$FILTER"
echo "$(ls "$OUT" | wc -l) pictures in $OUT"
