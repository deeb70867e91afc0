#!/bin/sh
# The main job on the bundled examples: `make demo` runs this with the freshly built program.
set -e
velmora=${1:-build/bin/velmora}
cd "$(dirname "$0")/.."
"$velmora" --version
