#!/bin/sh
# The main job on the bundled examples: `make demo` runs this with the freshly built program.
# Result files land in out/; the program's scratch tree goes to out/.velmora unless VELMORA_HOME is set.
# Any failing command stops the demo with its message on the terminal.
set -e
velmora=${1:-build/bin/velmora}
cd "$(dirname "$0")/.."
"$velmora" --version
mkdir -p out
VELMORA_HOME=${VELMORA_HOME:-$PWD/out/.velmora}
export VELMORA_HOME
profiles=$(ls examples/*.erd)
run() { "$velmora" -o out --quiet --no-timestamp "$@"; }

echo "== Profiles: header, samples, pitch, length, KP, elevation statistics"
"$velmora" info $profiles

echo "== IRI (mm/m): whole profile; 10 m continuous with the nine bands; 10/100/200 m fixed sections"
run iri $profiles --length 10 --bands
echo "== Octave split into nine bands (mm): all in one file, the sums in files of their own"
run octave $profiles --sum --long --short
echo "== Band reduction against the shipped limit lines of Default.ini (mm)"
run reduce $profiles
echo "== PSD (Hanning window), smoothed to 12 points per octave"
run psd $profiles --smooth 12
echo "== FFT band-pass filter 50-5 m"
run filter $profiles --type fft --kind bandpass --long 50 --short 5
echo "== Spreadsheet report from examples/report/iri_report.xlsm: before road_a_kp, after road_c_rough, 50-250 m"
run report examples/report/iri_report.xlsm $profiles --param before=road_a_kp --param after=road_c_rough \
    --param start=50 --param end=250
echo "== Fixed export of road_b (帳表(補修前後).xlsm)"
run report --fixed examples/road_b.erd

echo "== Charts (PNG): profiles, IRI with band IRIs, octave bands, band reduction, PSD, repair study, verification, statistics"
run plot profile $profiles
run plot iri $profiles --bands
run plot octave $profiles
run plot reduce $profiles
run plot psd $profiles --smooth 12
run plot filter $profiles
run plot repair examples/road_a_kp.erd
run plot xcorr examples/road_a_kp.erd examples/road_c_rough.erd --max-shift 200
run plot stats examples/road_b.erd examples/road_c_rough.erd
run plot profile --format svg examples/road_b.erd
echo "== Printed sheets (PDF, A4): profile split with nine octave panels and statistics; IRI"
run print --sheet octave $profiles
run print --sheet iri examples/road_b.erd

echo "== Summary"
run summary $profiles
echo "== $(ls out/*.CSV | wc -l) CSV files, $(ls out/*.png out/*.svg | wc -l) charts and $(ls out/*.pdf | wc -l) sheets written to $PWD/out"
