#!/usr/bin/env bash
# docExamples.sh [ZELM [DOCUMENT]]: runs the examples of docs/tool.md, or of another document, and shows where what they
# print is not what stands there.
#
# An example is a fenced block whose first line begins with "$ ". "..." stands for any lines, and times may differ. A
# file that a block shows with "cat" and that no command before has written is written as it is shown. Takes a minute.
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
zelm=$(realpath "${1:-$root/build/gcc/tools/zelm/zelm}")
document=$(realpath "${2:-$root/docs/tool.md}")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
mkdir bin blocks
ln -s "$zelm" bin/zelm
ln -s "$root/samples" samples
PATH=$work/bin:$PATH

# The plate's description is the first block of JSON.
awk '/^```json/ { inside = 1; next } /^```/ { if (inside) exit } inside' "$document" >plate.json
# blocks/NN.sh is a command, blocks/NN.out what stands below it.
awk '/^```/ { inside = !inside; name = ""; next }
  inside && /^\$ / { name = sprintf("blocks/%02d", ++n); print substr($0, 3) >(name ".sh"); printf "" >(name ".out")
    more = /\\$/; next }
  inside && name && more { print >(name ".sh"); more = /\\$/; next }
  inside && name { print >(name ".out") }' "$document"

# Four views of which the right pixels are turned by 0.03 degree about the principal point, and one wrong match.
turnedPairs() {
  echo "xL,yL,xR,yR"
  for view in 00 03 06 09; do
    for side in left right; do
      zelm detect "samples/desk-rig/${side}_$view.png" --plate samples/desk-rig/truth.json -o dots --quiet
    done
    awk -F, -v view="$view" 'FNR == 1 { next } NR == FNR { left[$1 "," $2] = $5 "," $6; next }
      ($1 + $2) % 2 == 0 && ($1 "," $2) in left { a = -0.03 * atan2(0, -1) / 180; x = $5 - 636.8; y = $6 - 484.3
        if (view == "03" && $1 == 0 && $2 == 0) y += 40
        printf "%s,%.6f,%.6f\n", left[$1 "," $2], 636.8 + cos(a) * x - sin(a) * y, 484.3 + sin(a) * x + cos(a) * y }' \
      "dots/left_${view}_dots.csv" "dots/right_${view}_dots.csv"
  done
}
! grep -q pairs.csv "$document" || turnedPairs >pairs.csv

# Shown lines against printed ones, where "..." is any lines.
holds() {
  awk 'function masked(line) { return line ~ / s; .* s of processor time/ ? "times" : line }
    NR == FNR { shown[++m] = masked($0); next } { printed[++n] = masked($0) }
    END { i = 1; any = 0
      for (k = 1; k <= n; ++k) {
        if (shown[i] == "...") { any = 1; ++i }
        if (i <= m && printed[k] == shown[i]) { ++i; any = 0 } else if (!any) exit 1 }
      if (shown[i] == "...") ++i
      exit i <= m }' "$1" "$2"
}

bad=0
for script in blocks/*.sh; do
  shown=${script%.sh}.out
  file=$(sed -n 's/^cat \([^ ]*\)$/\1/p' "$script")
  if [ -n "$file" ] && [ ! -e "$file" ]; then
    cp "$shown" "$file"
    continue
  fi
  bash "$script" >printed.txt 2>&1 || true
  if ! holds "$shown" printed.txt; then
    bad=$((bad + 1))
    echo "== $(cat "$script")"
    diff "$shown" printed.txt | sed 's/^</shown  :/; s/^>/printed:/' || true
  fi
done
echo "$(find blocks -name '*.sh' | wc -l) examples, $bad of them print something else"
[ "$bad" = 0 ]
