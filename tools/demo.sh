#!/bin/sh
# The main job on the bundled examples: `make demo` runs this with the freshly built program.
# Result files land in out/; the program's scratch tree goes to out/.velmora unless VELMORA_HOME is set.
set -e
velmora=${1:-build/bin/velmora}
cd "$(dirname "$0")/.."
"$velmora" --version
mkdir -p out
VELMORA_HOME=${VELMORA_HOME:-$PWD/out/.velmora}
export VELMORA_HOME
profiles=$(ls examples/*.erd)

echo "== Profiles: header, samples, pitch, length, KP, elevation statistics"
"$velmora" info $profiles

echo "== IRI: whole profile; 10 m continuous with the nine bands; 10/100/200 m fixed sections"
"$velmora" -o out --quiet iri $profiles --length 10 --bands 2>/dev/null
echo "== Octave split into nine bands"
"$velmora" -o out --quiet octave $profiles 2>/dev/null
echo "== FFT band-pass filter 50-5 m"
"$velmora" -o out --quiet filter $profiles --type fft --kind bandpass --long 50 --short 5 2>/dev/null
echo "== PSD (Hanning window), smoothed to 12 points per octave"
"$velmora" -o out --quiet psd $profiles --smooth 12 2>/dev/null
echo "== $(ls out/*.CSV | wc -l) CSV files in out/"
