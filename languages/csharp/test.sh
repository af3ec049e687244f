#!/usr/bin/env bash
# Compiles zelm.cs with Mono and compares it with the C library: test.sh FOLDER, of gcc's build.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
build=$(cd "${1:?the folder of the build}" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export LD_LIBRARY_PATH=$build:$build/measure${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}

"$here/../makeReference" "$build" "$work"
mcs -nologo -warnaserror+ -out:"$work/zelmTest.exe" "$here/zelm.cs" "$here/zelmTest.cs"
mono "$work/zelmTest.exe" "$here/../formats.zcal" "$work/reference.txt"

# Without the library it says so, in words.
mkdir "$work/none"
if words=$(cd "$work" && LD_LIBRARY_PATH=$work/none mono zelmTest.exe "$here/../formats.zcal" reference.txt 2>&1); then
  echo "zelm.cs: worked without the library" >&2
  exit 1
fi
grep -q 'ZelmLibraryException: libzelmMeasure.so.1 is missing' <<<"$words" || {
  echo "zelm.cs: without the library it says: $words" >&2
  exit 1
}
