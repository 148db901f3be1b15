#!/bin/sh
# Lines of tests against lines of the code they test (all lines of C++
# sources, headers and QML documents), in all and per folder. Exits non-zero
# when the tests pass the ceiling (0.40 of the code, or $ZARVANE_TEST_RATIO).
cd "$(dirname "$0")/.."

# lines DIR...: all lines of the C++ and QML files below the folders.
lines() {
    find "$@" -type f \( -name '*.cpp' -o -name '*.h' -o -name '*.qml' \) -print0 2>/dev/null \
        | xargs -0 cat 2>/dev/null | wc -l
}

row() {
    label="$1"; code="$2"; tests="$3"
    awk -v l="$label" -v c="$code" -v t="$tests" \
        'BEGIN { printf "%-16s %7d code %7d tests  %.2f\n", l, c, t, (c ? t / c : 0) }'
}

row "libobd + hal" "$(lines libobd hal)" "$(lines tests/libobd tests/hal)"
row "common" "$(lines common)" "$(lines tests/common)"
row "harmattan + qml" "$(lines harmattan qml)" "$(lines tests/harmattan)"
row "cli" "$(lines tools/cli)" "$(lines tests/tools/cli)"
row "elmsim" "$(lines tools/elmsim)" "$(lines tests/tools/elmsim)"
row "support, bench" "0" "$(lines tests/support tests/benchmarks tests/fuzz)"

code="$(lines libobd hal common harmattan tools qml)"
tests="$(lines tests)"
row "all" "$code" "$tests"
awk -v c="$code" -v t="$tests" -v max="${ZARVANE_TEST_RATIO:-0.40}" \
    'BEGIN { if (t > c * max) { printf "test lines above %.2f of the code\n", max; exit 1 } }'
