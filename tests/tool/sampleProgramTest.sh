#!/usr/bin/env bash
# The sample program makes the point that the tool makes of the same pixels.
set -eu
zelm=$1
program=$2
sample=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
rig=${ZELM_DESK_RIG:-$work/rig.zcal}
if [ -z "${ZELM_DESK_RIG:-}" ]; then
  "$zelm" calibrate --plate "$sample/truth.json" --left "$sample/left_*.png" --right "$sample/right_*.png" \
    -o "$work" --quiet
fi
pixels="640 480 610.5 481.25"
echo "${pixels// /,}" >"$work/pair.csv"
"$zelm" triangulate "$rig" "$work/pair.csv" -o "$work/point.csv" --quiet
tool=$(awk -F, 'NR == 2 { printf "%.4f %.4f %.4f, %.3f and %.3f px", $2, $3, $4, $5, $6 }' "$work/point.csv")
# shellcheck disable=SC2086
sample_point=$("$program" "$rig" $pixels)
echo "$sample_point"
[ "$sample_point" = "$tool from its projections" ] || { echo "the tool says: $tool"; exit 1; }
if "$program" "$sample/truth.json" 1 2 3 4 2>"$work/refused"; then
  echo "a file that is no calibration is taken for one"
  exit 1
fi
grep -q 'truth.json: not a calibration' "$work/refused" || { cat "$work/refused"; exit 1; }
