#!/usr/bin/env bash
# An installed library, moved to another folder, is found by find_package(zelmLib) and by pkg-config, and a user's
# program links and runs.
set -eu
build=$1
source=$2
generator=$3
compiler=$4
compile_flags=${5:-}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cmake --install "$build" --prefix "$work/before" >/dev/null
mv "$work/before" "$work/prefix"
mkdir "$work/user"
cp "$source/tests/abi/cClient.c" "$work/user/"
cat >"$work/user/CMakeLists.txt" <<'TXT'
cmake_minimum_required(VERSION 3.22)
project(user C)
find_package(zelmLib 1 REQUIRED)
add_executable(user cClient.c)
target_link_libraries(user PRIVATE zelm::zelmLib)
add_executable(userStatic cClient.c)
target_link_libraries(userStatic PRIVATE zelm::zelmLibStatic)
TXT
# The generator and compiler of the build under test: a machine need not have others.
cmake -S "$work/user" -B "$work/user/build" -G "$generator" -DCMAKE_PREFIX_PATH="$work/prefix" \
  -DCMAKE_C_COMPILER="$compiler" -DCMAKE_C_FLAGS="$compile_flags" >/dev/null
cmake --build "$work/user/build" >/dev/null
"$work/user/build/user"
"$work/user/build/userStatic"

package_folder=$(dirname "$(find "$work/prefix" -name zelmLib.pc)")
flags=$(PKG_CONFIG_PATH=$package_folder pkg-config --cflags --libs zelmLib)
# shellcheck disable=SC2086
"$compiler" $compile_flags "$source/tests/abi/cClient.c" $flags -o "$work/userPc"
LD_LIBRARY_PATH=$(dirname "$(find "$work/prefix" -name libzelmLib.so)") "$work/userPc"
