#!/bin/sh
# Prints the project's measured figures in one run (see BENCHMARKS.md):
# exchanges per second through the full stack, discovery time per profile,
# DTC database construction and lookup, the database filter over 4277 rows,
# application start-up to the first frame, resident memory after discovery,
# and the CPU use of a polling client and of the application while its
# dashboard polls. Against elmsim with no delay and with
# a 50 ms delay per request; values per second and time to the first value
# against each timing model of elmsim. Prints figures; asserts nothing.
# Usage: scripts/benchmarks.sh [build dir, default build]
set -e
cd "$(dirname "$0")/.."
BUILD="${1:-build}"
[ -x "$BUILD/tools/cli/zarvane-cli" ] || scripts/build.sh "$BUILD"
ninja -C "$BUILD" zarvane-cli elmsim bench_discovery bench_application >/dev/null
ninja -C "$BUILD" bench_library >/dev/null 2>&1 || echo "(bench_library not built: Google Benchmark missing)"
SIM="$BUILD/tools/elmsim/elmsim"
CLI="$BUILD/tools/cli/zarvane-cli"
PORT="${BENCH_PORT:-35124}"
export QT_QPA_PLATFORM=offscreen

sim_start() {
    "$SIM" --port "$PORT" --reset-delay 0 --search-delay 0 --delay "$1" >/dev/null 2>&1 &
    SIM_PID=$!
    sleep 0.3
}
sim_stop() {
    kill "$SIM_PID" 2>/dev/null || true
    wait "$SIM_PID" 2>/dev/null || true
}

echo "# Machine: $(nproc) cores, $(grep -m1 'model name' /proc/cpuinfo | cut -d: -f2 | sed 's/^ //')"
echo "# Load average at start: $(cut -d' ' -f1-3 /proc/loadavg)"

echo
echo "## Exchanges per second through the full stack (zarvane-cli bench, PID 0C)"
for delay in 0 50; do
    count=5000; [ "$delay" -gt 0 ] && count=40
    sim_start "$delay"
    echo "-- elmsim delay $delay ms, $count exchanges"
    "$CLI" --port "$PORT" --count "$count" bench 0C || true
    sim_stop
done

echo
echo "## Values per second on a modelled adapter (elmsim --timing MODEL, can11)"
# Six PIDs of the engine alone, six with vehicle speed (answered by both
# ECUs), and one PID per request with the adapter's default timing; "first
# value" is the wall time of a one-reading run, opening included.
SIX_ONE="0C,04,05,0F,10,11"
SIX_TWO="0C,0D,04,05,0F,11"
figure() {
    "$CLI" --json --port "$PORT" --count "$2" bench "$1" 2>/dev/null \
        | tr -d ' \n' | grep -o "\"$3\":[0-9.]*" | cut -d: -f2
}
first_value() {
    start=$(date +%s%N)
    "$CLI" --port "$PORT" --count 1 bench "$1" >/dev/null 2>&1 || true
    echo $(( ($(date +%s%N) - start) / 1000000 ))
}
printf "%-9s %13s %13s %13s %7s %15s %15s\n" model "six, 1 ECU/s" "six, 2 ECUs/s" "one-PID/s" ratio "first value six" "first value one"
for model in genuine bt-clone wifi stn; do
    "$SIM" --port "$PORT" --reset-delay 0 --search-delay 0 --timing "$model" --seed 1 >/dev/null 2>&1 &
    SIM_PID=$!
    sleep 0.3
    one=$(figure "$SIX_ONE" 100 valuesPerSecond)
    two=$(figure "$SIX_TWO" 100 valuesPerSecond)
    plain=$(figure 0C 20 valuesPerSecond)
    firstSix=$(first_value "$SIX_ONE")
    firstOne=$(first_value 0C)
    sim_stop
    ratio=$(echo "scale=1; ${one:-0} / ${plain:-1}" | bc 2>/dev/null || echo "?")
    printf "%-9s %13.1f %13.1f %13.1f %6sx %12s ms %12s ms\n" "$model" "${one:-0}" "${two:-0}" "${plain:-0}" "$ratio" "$firstSix" "$firstOne"
done
echo "(command: zarvane-cli --port P --count N bench $SIX_ONE; one PID: bench 0C)"

echo
echo "## Discovery time per profile (in-process elmsim over TCP loopback)"
for delay in 0 50; do
    "$BUILD/tests/benchmarks/bench_discovery" "$delay"
done

if [ -x "$BUILD/tests/benchmarks/bench_library" ]; then
    echo
    echo "## DTC database and the 4277-row filter (Google Benchmark)"
    "$BUILD/tests/benchmarks/bench_library" --benchmark_min_time=0.2 2>/dev/null
fi

echo
echo "## Application start-up to the first frame (offscreen)"
APP="${APP:-$BUILD/harmattan/zarvane}"
if [ -x "$APP" ]; then
    # The signal: Qt's render-loop timing category prints "Frame rendered"
    # for each frame; the first one is the first frame on screen.
    for i in 1 2 3; do
        log=/tmp/zarvane-start.$$
        start=$(date +%s%N)
        QT_LOGGING_RULES="qt.scenegraph.time.renderloop=true" "$APP" >"$log" 2>&1 &
        app=$!
        first=""
        for _ in $(seq 1 400); do
            if grep -q "Frame rendered" "$log" 2>/dev/null; then
                first=$(date +%s%N)
                break
            fi
            sleep 0.01
        done
        kill "$app" 2>/dev/null || true
        wait "$app" 2>/dev/null || true
        if [ -n "$first" ]; then
            echo "run $i: first frame after $(( (first - start) / 1000000 )) ms"
        else
            echo "run $i: no frame within 4 s"
        fi
        rm -f "$log"
    done
else
    echo "($APP not built)"
fi

echo
echo "## Resident memory and CPU of a polling client (zarvane-cli live 0C 0D 05, 10 s)"
for delay in 0 50; do
    sim_start "$delay"
    "$CLI" --port "$PORT" --period 100 --count 1000 live 0C 0D 05 >/tmp/zarvane-live.$$ 2>&1 &
    cli=$!
    # After discovery: the first sample line.
    for _ in $(seq 1 200); do
        grep -Eq '^ *[0-9.]+s$' /tmp/zarvane-live.$$ 2>/dev/null && break
        sleep 0.05
    done
    rss=$(grep VmRSS /proc/$cli/status 2>/dev/null | tr -s ' ' | cut -d' ' -f2)
    t0=$(cut -d' ' -f14-15 /proc/$cli/stat 2>/dev/null | tr ' ' '+' | bc)
    sleep 10
    t1=$(cut -d' ' -f14-15 /proc/$cli/stat 2>/dev/null | tr ' ' '+' | bc)
    samples=$(grep -Ec '^ *[0-9.]+s$' /tmp/zarvane-live.$$ || true)
    kill "$cli" 2>/dev/null || true
    wait "$cli" 2>/dev/null || true
    sim_stop
    ticks=$(getconf CLK_TCK)
    echo "-- elmsim delay $delay ms: VmRSS after discovery ${rss:-?} kB;" \
         "CPU over 10 s of polling: $(echo "scale=3; (${t1:-0} - ${t0:-0}) / $ticks" | bc) s" \
         "($(echo "scale=1; 100 * (${t1:-0} - ${t0:-0}) / $ticks / 10" | bc) % of one core); $samples samples printed"
    rm -f /tmp/zarvane-live.$$
done
echo
echo "## The application: connection, memory, CPU and event loop while the dashboard polls (10 s)"
for delay in 0 50; do
    sim_start "$delay"
    echo "-- elmsim delay $delay ms"
    "$BUILD/tests/benchmarks/bench_application" "$PORT" 10 2>/dev/null | grep -v "^estimated\|^comsu" || true
    sim_stop
done
