#!/bin/sh
# Renders the HTML report of the simulated car with Debian's headless
# Chromium (installed when missing) and prints the path of the picture, for
# a person to look at. Builds nothing: build zarvane-cli and elmsim first.
#   scripts/report-screenshot.sh [build-dir] [profile]
set -e
cd "$(dirname "$0")/.."
BUILD="${1:-build}"
PROFILE="${2:-can11}"
CLI="$BUILD/tools/cli/zarvane-cli"
SIM="$BUILD/tools/elmsim/elmsim"
for binary in "$CLI" "$SIM"; do
    if [ ! -x "$binary" ]; then
        echo "no $binary: build the zarvane-cli and elmsim targets first" >&2
        exit 1
    fi
done
if ! command -v chromium >/dev/null 2>&1; then
    SUDO=""
    [ "$(id -u)" -eq 0 ] || SUDO=sudo
    $SUDO apt-get install -y chromium >&2
fi
OUT="$(cd "$BUILD" && pwd)/report"
mkdir -p "$OUT"
PORT=$((36000 + $$ % 2000))
"$SIM" --port "$PORT" --profile "$PROFILE" --frozen --reset-delay 0 --search-delay 0 >"$OUT/elmsim.log" 2>&1 &
SIM_PID=$!
PROFILE_DIR="$(mktemp -d)"
trap 'kill "$SIM_PID" 2>/dev/null; rm -rf "$PROFILE_DIR"' EXIT
# The simulator listens once it has printed its address.
tries=0
until "$CLI" --port "$PORT" report --out "$OUT/report-$PROFILE.html" >/dev/null 2>"$OUT/cli.log"; do
    tries=$((tries + 1))
    if [ "$tries" -ge 50 ] || ! kill -0 "$SIM_PID" 2>/dev/null; then
        echo "no report: see $OUT/cli.log" >&2
        exit 1
    fi
    sleep 0.2
done
chromium --headless --no-sandbox --disable-gpu --disable-quic --no-first-run \
    --disable-background-networking --disable-component-update --disable-sync \
    --user-data-dir="$PROFILE_DIR" --screenshot="$OUT/report-$PROFILE.png" --window-size=1000,2000 \
    "file://$OUT/report-$PROFILE.html" >"$OUT/chromium.log" 2>&1
echo "$OUT/report-$PROFILE.png"
