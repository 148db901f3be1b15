#!/bin/sh
# Installs the dependencies, builds, starts the adapter simulator and the
# application connected to it (with a separate demo settings store).
set -e
cd "$(dirname "$0")/.."
scripts/install-deps.sh
scripts/build.sh build
PORT="${ELMSIM_PORT:-35000}"
if [ -x build/tools/elmsim/elmsim ]; then
    build/tools/elmsim/elmsim --port "$PORT" &
    SIM=$!
    trap 'kill $SIM 2>/dev/null' EXIT INT TERM
    sleep 0.5
fi
if [ -x build/harmattan/zarvane ]; then
    DEMO="$(pwd)/build/demo-config"
    mkdir -p "$DEMO/Quillot"
    cat > "$DEMO/Quillot/Zarvane.conf" <<CONF
[connectivity]
connectionMethod=1
defaultIpAddress=127.0.0.1
defaultIpPort=$PORT
CONF
    XDG_CONFIG_HOME="$DEMO" build/harmattan/zarvane
elif [ -n "$SIM" ]; then
    echo "Adapter simulator listening on 127.0.0.1:$PORT (Ctrl-C to stop)"
    wait $SIM
fi
