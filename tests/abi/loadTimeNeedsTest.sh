#!/usr/bin/env bash
# At load time the library needs the C and the maths library alone.
set -eu
needed=$(readelf -d "$1" | grep -oE 'NEEDED.*\[[^]]+' | sed 's/.*\[//' | sort | tr '\n' ' ')
[ "$needed" = "libc.so.6 libm.so.6 " ] || { echo "needs: $needed"; exit 1; }
readelf -d "$1" | grep -q 'SONAME.*\[libzelmLib.so.1\]' || { echo "SONAME is not libzelmLib.so.1"; exit 1; }
