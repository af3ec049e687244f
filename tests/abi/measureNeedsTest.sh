#!/usr/bin/env bash
# At load time the measuring library needs the core, the thread library, the C++ runtime, what the solver, which is
# linked into it, needs, and what files of other programs take: YAML, ZIP and its compression.
set -eu
needed=$(readelf -d "$1" | grep -oE 'NEEDED.*\[[^]]+' | sed 's/.*\[//' | sort | tr '\n' ' ')
expected="libc.so.6 libcholmod.so.3 libcxsparse.so.3 libf77blas.so.3 libgcc_s.so.1 libglog.so.1 liblapack.so.3 "
expected+="libm.so.6 libstdc++.so.6 libtbb.so.12 libyaml-cpp.so.0.7 libz.so.1 libzelmLib.so.1 "
expected+="libzip.so.4 "
[ "$needed" = "$expected" ] || { echo "needs: $needed"; exit 1; }
readelf -d "$1" | grep -q 'SONAME.*\[libzelmMeasure.so.1\]' || { echo "SONAME is not libzelmMeasure.so.1"; exit 1; }
