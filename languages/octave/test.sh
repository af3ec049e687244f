#!/usr/bin/env bash
# Compiles zelmOctave.c for Octave and compares it with the C library: test.sh FOLDER, of gcc's build.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
build=$(cd "${1:?the folder of the build}" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export LD_LIBRARY_PATH=$build:$build/measure${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}

"$here/../makeReference" "$build" "$work"

# With the header for MATLAB the same program prints the same, sizes and places of the records too.
gcc -std=c99 -Wall -Wextra -Werror -DZELM_OTHER_HEADER='"zelmMatlab.h"' -I"$here" "$here/../reference.c" \
  -o "$work/byMatlabHeader" -L"$build/measure" -L"$build" -lzelmMeasure -lzelmLib
"$work/byMatlabHeader" "$here/../formats.zcal" | diff "$work/reference.txt" - >&2

(cd "$work" && CFLAGS="-O2 -Wall -Wextra -Werror" mkoctfile --mex -I"$here/../../include" -L"$build/measure" \
  -L"$build" "$here/zelmOctave.c" -lzelmMeasure -lzelmLib -o "$work/zelmOctave.mex")
octave-cli --quiet --no-history --no-init-file --eval \
  "addpath ('$work'); addpath ('$here'); zelmOctaveTest ('$here/../formats.zcal', '$work/reference.txt');"
