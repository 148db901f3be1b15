#!/bin/sh
# Installs every Debian 12 package the project needs. Quiet when all are present.
set -e

PACKAGES="cmake ninja-build g++ pkg-config
qt6-base-dev qt6-declarative-dev qt6-svg-dev qt6-connectivity-dev libbluetooth-dev
qml6-module-qtquick qml6-module-qtquick-controls qml6-module-qtquick-templates
qml6-module-qtquick-layouts qml6-module-qtquick-window qml6-module-qtqml-workerscript
qml6-module-qtquick-shapes qml6-module-qttest
libgtest-dev libgmock-dev libbenchmark-dev
clang libclang-rt-14-dev
xvfb xauth netcat-openbsd"

missing=""
for p in $PACKAGES; do
    if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
        missing="$missing $p"
    fi
done
[ -z "$missing" ] && exit 0

SUDO=""
[ "$(id -u)" -ne 0 ] && SUDO="sudo"
echo "Installing:$missing"
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
# shellcheck disable=SC2086
$SUDO apt-get install -y -qq $missing >/dev/null
