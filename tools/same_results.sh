#!/bin/sh
# Whether two builds of the program write the same result files, byte for byte: run before and
# after a change that must not alter any figure. Each program runs the same commands on the bundled
# examples (and on PROFILE too when given, e.g. a long measured road) in a folder of its own, with
# no timestamps in the names; the two trees are then compared.
#   tools/same_results.sh OLD_PROGRAM NEW_PROGRAM [PROFILE]
set -eu
old=$(readlink -f "$1"); new=$(readlink -f "$2"); extra=${3:+$(readlink -f "$3")}
cd "$(dirname "$0")/.."
work=$(mktemp -d); trap 'rm -rf "$work"' EXIT
profiles=$(ls "$PWD"/examples/*.erd)
a=$(ls "$PWD"/examples/road_a_kp.erd); c=$(ls "$PWD"/examples/road_c_rough.erd)

run_all() {  # program folder
  out=$2; mkdir -p "$out/home"
  step=0
  run() { step=$((step + 1)); mkdir -p "$out/$step"; program=$1; shift
          VELMORA_HOME="$out/home" "$program" -o "$out/$step" --quiet --yes --no-timestamp "$@" >/dev/null 2>&1 ||
          echo "exit $?" > "$out/$step/status"; }
  for p in "$profiles" ${extra:+"$extra"}; do
    run "$1" iri $p --length 10 --bands
    run "$1" octave $p --sum --long --short --bands 1,5,9
    run "$1" reduce $p --sum
    run "$1" psd $p --smooth 12
    run "$1" filter $p --type fft --kind bandpass --long 50 --short 5
    run "$1" filter $p --type ma --kind bandpass --long 50 --short 10
    run "$1" filter $p --type slope
    run "$1" filter $p --type iri
    run "$1" stats $p
  done
  run "$1" xcorr "$a" "$c"
  run "$1" repair "$a" --long 51.2 --short 4 --length 10 --lines ,,,,,,,,
  run "$1" tool reverse "$a"
}
run_all "$old" "$work/old"
run_all "$new" "$work/new"
rm -rf "$work/old/home" "$work/new/home"
if diff -r "$work/old" "$work/new" >/dev/null; then
  echo "same: $(find "$work/new" -type f ! -name status | wc -l) result files," \
       "$(find "$work/new" -name status | wc -l) commands failing alike"
else
  diff -rq "$work/old" "$work/new" || true
  exit 1
fi
