#!/usr/bin/env bash
# The sample programs build as a user builds them, and measure right: from an installed tree that was moved, by CMake
# and by pkg-config, and together with the library's source, by FetchContent and as a subdirectory.
set -euo pipefail
build=$1
source=$2
generator=$3
c_compiler=$4
cxx_compiler=$5
as_pgm=$6
launcher=${7:-}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() {
  echo "$*"
  exit 1
}

cmake --install "$build" --prefix "$work/before" >/dev/null
mv "$work/before" "$work/prefix"
prefix=$work/prefix
documents=$prefix/share/doc/zelmLib
for file in "$prefix"/include/zelmLib.h "$prefix"/include/zelmMeasure.h "$prefix"/share/man/man1/zelm{,-calibrate}.1 \
  "$prefix"/share/bash-completion/completions/zelm "$prefix"/share/zsh/site-functions/_zelm \
  "$prefix"/share/fish/vendor_completions.d/zelm.fish "$documents"/{LICENSE,README.md,CHANGELOG.md} \
  "$documents"/docs/tool.md "$documents"/samples/desk-rig/truth.json; do
  [ -s "$file" ] || fail "not installed: $file"
done
zelm=$prefix/bin/zelm
library_folder=$(dirname "$(find "$prefix" -name libzelmLib.so)")

# Programs to build, a copy as a user makes one.
cp -r "$documents/samples/minimal" "$work/user"
configure() { # build folder, source, further options
  cmake -S "$2" -B "$1" -G "$generator" -DCMAKE_C_COMPILER="$c_compiler" -DCMAKE_CXX_COMPILER="$cxx_compiler" \
    "${@:3}" >"$work/configure.log" 2>&1 || { cat "$work/configure.log"; fail "configuring $2 ${*:3}"; }
}
build_all() { # build folder
  cmake --build "$1" >"$work/build.log" 2>&1 || { cat "$work/build.log"; fail "building $1"; }
}
configure "$work/installed" "$work/user" -DCMAKE_PREFIX_PATH="$prefix"
build_all "$work/installed"

# What the README says that it prints.
"$as_pgm" "$source/samples/desk-rig" "$work/views"
promised=$(grep -A 1 '^left camera: focal lengths' "$source/README.md")
checks_calibration() { # program
  local said
  said=$(cd "$work/views" && "$1")
  [ "$said" = "$promised" ] || fail "$1: $said"
  # Without images it says so.
  if (cd "$work" && "$1") >/dev/null 2>"$work/said"; then
    fail "$1 needs no images"
  fi
  grep -q 'left_00.pgm' "$work/said" || fail "$1: $(cat "$work/said")"
}
checks_calibration "$work/installed/calibrate"

# The length that the tool measures.
rig=${ZELM_DESK_RIG:-}
if [ -z "$rig" ]; then
  sample=$source/samples/desk-rig
  "$zelm" calibrate --plate "$sample/truth.json" --left "$sample/left_*.png" --right "$sample/right_*.png" \
    -o "$work/rig" --quiet
  rig=$work/rig/rig.zcal
fi
printf 'xL,yL,xR,yR\n377,331,401,334\n363,459,374,457\n' >"$work/pairs.csv"
"$zelm" length "$rig" "$work/pairs.csv" -o "$work/lengths.csv" --quiet 2>"$work/said" # it warns: they are whole pixels
tool=$(awk -F, 'NR == 1 { for (i = 1; i <= NF; ++i) column[$i] = i }
  NR == 2 { printf "%.4f +- %.4f", $column["length"], $column["U95"] }' "$work/lengths.csv")
measured=$("$work/installed/lengthOfPixels" "$rig" 377 331 401 334 363 459 374 457)
echo "length: $measured"
[ "$measured" = "$tool (95 %)" ] || fail "the tool measures $tool"
if "$work/installed/lengthOfPixels" "$work/pairs.csv" 1 2 3 4 5 6 7 8 2>"$work/said"; then
  fail "a table is taken for a calibration"
fi
grep -q 'pairs.csv: not a calibration' "$work/said" || fail "$(cat "$work/said")"

# pkg-config.
flags() {
  PKG_CONFIG_PATH=$library_folder/pkgconfig pkg-config --cflags --libs "$1"
}
# shellcheck disable=SC2046
"$c_compiler" "$work"/user/{calibrate,loadGray}.c $(flags zelmLib) -o "$work/calibrate"
# shellcheck disable=SC2046
"$cxx_compiler" "$work/user/lengthOfPixels.cpp" $(flags zelmMeasure) -o "$work/length"
export LD_LIBRARY_PATH=$library_folder
checks_calibration "$work/calibrate"
[ "$("$work/length" "$rig" 377 331 401 334 363 459 374 457)" = "$measured" ] || fail "the length by pkg-config"
unset LD_LIBRARY_PATH

# With the source: the core alone, and not optimised, since the rest takes minutes.
configure "$work/fetched" "$work/user" -DZELM_SOURCE="$source" -DZELM_BUILD_MEASURE=OFF \
  -DFETCHCONTENT_FULLY_DISCONNECTED=ON -DCMAKE_BUILD_TYPE=None -DCMAKE_C_COMPILER_LAUNCHER="$launcher" \
  -DCMAKE_CXX_COMPILER_LAUNCHER="$launcher"
build_all "$work/fetched"
checks_calibration "$work/fetched/calibrate"

mkdir "$work/above"
cat >"$work/above/CMakeLists.txt" <<'TXT'
cmake_minimum_required(VERSION 3.22)
project(above LANGUAGES C CXX)
add_subdirectory(${ABOVE_SOURCE} zelmLib)
add_executable(lengthOfPixels ${ABOVE_USER}/lengthOfPixels.cpp)
target_link_libraries(lengthOfPixels PRIVATE zelm::zelmMeasure zelm::zelmLib)
foreach(target zelm zelm_manual zelm_render zelm_core zelm_test_mat)
  if(TARGET ${target})
    message(FATAL_ERROR "${target} is no business of a project that uses the library")
  endif()
endforeach()
install(TARGETS lengthOfPixels)
TXT
configure "$work/above/build" "$work/above" -DABOVE_SOURCE="$source" -DABOVE_USER="$work/user"
grep -q '^CMAKE_BUILD_TYPE:[A-Z]*=$' "$work/above/build/CMakeCache.txt" || fail "it changes the build type above it"
if grep -q 'zelmLib.h' "$work/above/build/zelmLib/cmake_install.cmake"; then
  fail "it installs itself with the project above it"
fi
