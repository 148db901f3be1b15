#!/bin/sh
# Installs the dependencies, builds and runs the whole test suite.
set -e
cd "$(dirname "$0")/.."
scripts/install-deps.sh
scripts/build.sh build
export QT_QPA_PLATFORM=offscreen
cd build
ctest --output-on-failure --timeout 300 -j"$(nproc)"
