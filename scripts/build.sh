#!/bin/sh
# Configures and builds the project. Usage: scripts/build.sh [build-dir] [cmake options...]
set -e
cd "$(dirname "$0")/.."
BUILD_DIR="${1:-build}"
[ $# -gt 0 ] && shift
cmake -S . -B "$BUILD_DIR" -G Ninja "$@" >/dev/null
cmake --build "$BUILD_DIR"
