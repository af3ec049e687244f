#!/usr/bin/env bash
# Every exported function is named by a test program, beside its fault case and the digest: none is left unproven.
set -eu
source_dir=$1
functions=$(cat "$source_dir"/include/zelm/*.h "$source_dir"/include/zelmMeasure/*.h | grep -v '^#' |
  tr '\n' ' ' | grep -oE 'ZELM_API [^;(]*\(' |
  grep -oE '[A-Za-z0-9_]+ *\($' | tr -d ' (' | sort -u)
tests=$(find "$source_dir/tests" -name '*Test.cpp' | sort)
names=$(grep -owhE '(zelm|perspectiveTrans|remapImage)[A-Za-z0-9_]+' $tests | sort -u)
untested=$(comm -23 <(echo "$functions") <(echo "$names"))
[ -z "$untested" ] || { echo "named by no test: $untested"; exit 1; }
count=$(echo "$functions" | wc -l)
fewest=$(for function in $functions; do
  echo "$(grep -lw "$function" $tests | wc -l) $function"
done | sort -n | head -1)
echo "$count functions, each named by a test; fewest test files: $fewest"
