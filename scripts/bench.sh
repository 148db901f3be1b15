#!/bin/sh
# Measured adapter-speed figures: single-PID exchanges per second through the
# whole stack (scan tool, transporter, decoder) against elmsim, and the
# client's own CPU time per exchange, against the genuine adapter
# personality. Prints its figures; asserts nothing. The load average comes
# first: the figures only mean something on an otherwise quiet machine.
set -e
cd "$(dirname "$0")/.."
BUILD="${BUILD:-build}"
[ -x "$BUILD/tools/cli/zarvane-cli" ] || scripts/build.sh "$BUILD"
SIM="$BUILD/tools/elmsim/elmsim"
CLI="$BUILD/tools/cli/zarvane-cli"
PORT="${BENCH_PORT:-35123}"

run() {
    delay="$1"; count="$2"
    "$SIM" --port "$PORT" --adapter genuine --reset-delay 0 --search-delay 0 --delay "$delay" >/dev/null &
    sim=$!
    sleep 0.3
    echo "== elmsim --delay $delay, $count exchanges of PID 0C"
    "$CLI" --port "$PORT" --count "$count" bench 0C || true
    kill "$sim" 2>/dev/null; wait "$sim" 2>/dev/null || true
}

echo "# Load average at start: $(cut -d' ' -f1-3 /proc/loadavg)"
run 0 20000
run 50 40
