#!/usr/bin/env bash
# What the compiler cannot see of the layering: a layer includes no public header of a higher one, heap memory comes
# from the frame alone, and the library neither prints, throws nor jumps.
set -u
cd "$1" || exit 1
failed=0

refuse() { # what, pattern, files...
  local what=$1 pattern=$2
  shift 2
  local file hits
  for file in "$@"; do
    hits=$(sed 's://.*$::' "$file" | grep -nE "$pattern")
    if [ -n "$hits" ]; then
      printf '%s in %s:\n%s\n' "$what" "$file" "$hits"
      failed=1
    fi
  done
}

# layer folder, public headers it may include besides base.h
check_layer() {
  local folder=$1 allowed=$2 files
  files=$(find "$folder" -name '*.cpp' -o -name '*.h')
  [ -n "$files" ] || { echo "no sources in $folder"; failed=1; return; }
  local hits
  # shellcheck disable=SC2086
  hits=$(grep -nE '#include "zelm(Lib|/)' $files /dev/null | grep -vE "\"zelm/(base|$allowed)\.h\"")
  if [ -n "$hits" ]; then
    printf '%s includes a public header of a higher layer:\n%s\n' "$folder" "$hits"
    failed=1
  fi
}

check_layer src/frame 'image'
check_layer src/mat 'mat'
check_layer src/math 'math|mathCorrelation|mathRoots|mat'
check_layer src/geom 'clp2d|clp3d|cg|misc|mat'
check_layer src/match 'match'
check_layer src/fit 'fit|mat|math'
check_layer src/kernels 'kernels'
check_layer src/bin 'bin'
check_layer src/edge 'edge1d'
check_layer src/calib 'calib|mat|math'
stereo=3DLib/zelmLib/zelm2View/src
check_layer $stereo/pair 'twoView|calib|mat|math'
check_layer $stereo/pattern 'twoView|calib|fit|bin|edge1d|mat|math|image'
check_layer $stereo/geometry 'twoView|twoViewGeometry|calib|cg|misc|kernels|mat'
check_layer $stereo/zelmCstmDrovn 'cstmGeometry|cstmSearch|twoView|twoViewGeometry|calib|cg|clp2d|misc|kernels|mat'

sources=$(find src 3DLib -name '*.cpp' -o -name '*.h')
outside_frame=$(echo "$sources" | grep -vE '^src/frame/(alloc|assertion)\.cpp$')
# shellcheck disable=SC2086
{
  refuse "heap memory past the allocation seam" \
    '\b(malloc|calloc|realloc|free) *\(|\bnew +[A-Za-z]|\bdelete +[A-Za-z[]|std::(vector|string|map|unique_ptr)' \
    $outside_frame
  refuse "printing, exits or jumps in the library" \
    '\b(printf|fprintf|puts|exit|abort) *\(|std::c(out|err)|\bgoto\b|\bthrow\b|\bcatch\b' $outside_frame
  refuse "switched-off code" '^ *# *if +0' $sources
}

# The measuring library stands on the core's public headers; of the core's inside, its rigs know the layout of the
# calibration block, what completes one, and where an object keeps the dots that it has read. It neither
# prints nor formats, and touches no file.
measure=$(find measure -name '*.cpp' -o -name '*.h')
[ -n "$measure" ] || { echo "no sources in measure"; failed=1; }
check_measure_includes() {
  local file include own
  own=" $(find measure -name '*.h' -printf '%f ') "
  for file in $measure; do
    for include in $(grep -oE '^ *# *include *"[^"]+"' "$file" | grep -oE '"[^"]+"' | tr -d '"'); do
      case "$own" in
        *" $include "*) continue ;;
      esac
      case "$file:$include" in
        measure/rig/*:calibBlock.h | measure/rig/*:calibObject.h | measure/rig/*:pairCompletion.h) ;;
        *) echo "$file includes $include, which is neither the measuring library's nor public"; failed=1 ;;
      esac
    done
    for include in $(grep -oE '^ *# *include *<[^>]+>' "$file" | grep -oE '<[^>]+>' | tr -d '<>'); do
      case "$file:$include" in
        *:zelmLib.h | *:zelmMeasure.h | measure/match/*:tbb/* | measure/adjust/*:ceres/* | measure/adjust/*:Eigen/* | \
          measure/verify/*:Eigen/* | measure/plan/*:Eigen/* | measure/checks/*:Eigen/* | \
          measure/compare/*:Eigen/* | measure/features/*:Eigen/* | \
          measure/files/*:yaml-cpp/* | measure/files/*:zip.h | measure/files/*:zlib.h) ;;
        *:*.h | *:*/* | *:iostream | *:ostream | *:istream | \
          *:fstream | *:sstream | *:filesystem | *:cstdio | *:format | *:print)
          echo "$file includes <$include>"
          failed=1
          ;;
      esac
    done
  done
}
check_measure_includes
# shellcheck disable=SC2086
refuse "printing or exits in the measuring library" \
  '\b(printf|fprintf|puts|fputs|exit|abort) *\(|std::(cout|cerr|clog|print|format)\b|\bfmt::' $measure

# One namespace holds all folders: a type that two headers define would be two things to the linker under one name.
twice=$(grep -rhoE '^(struct|class) [A-Za-z0-9]+( final)?( :.*)? \{' measure --include='*.h' |
  awk '{print $2}' | sort | uniq -d)
if [ -n "$twice" ]; then
  echo "types that two headers of the measuring library define: $twice"
  failed=1
fi

trees=(src 3DLib measure render tests tools bench)
duplicates=$(find "${trees[@]}" -name '*.cpp' -o -name '*.h' | xargs -n1 basename | sort | uniq -d)
if [ -n "$duplicates" ]; then
  echo "file names that are not unique in the tree: $duplicates"
  failed=1
fi
exit $failed
