#!/usr/bin/env bash
# storedInterfaces.sh BUILD [--store]: compares the binary interfaces of the two libraries in BUILD, functions with all
# the types that they take, with the stored ones in tests/abi/interfaces. What is new passes and is named, so that it
# can be stored with the release that brings it (--store); what changed or went fails, as programs that are built
# already would break. BUILD holds debug information: ./check abi.
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
build=$1
stored=$root/tests/abi/interfaces
# What no exported function takes may change. Whether the headers name a type must not be asked: types of the stored
# file would count as hidden, and what changed in them be passed over.
public=(--exported-interfaces-only --no-show-locs)
changed=()

for library in zelmLib zelmMeasure; do
  file=$(find "$build" -name "lib$library.so" | head -n 1)
  [ -n "$file" ] || { echo "$build: no lib$library.so" >&2; exit 1; }
  if [ "${2:-}" = --store ]; then
    mkdir -p "$stored"
    abidw "${public[@]}" --no-corpus-path --no-comp-dir-path "$file" |
      sed "s|path='$root/|path='|" >"$stored/$library.abi"
    continue
  fi
  [ -f "$stored/$library.abi" ] || { echo "$stored/$library.abi: not there" >&2; exit 1; }
  # Only what is new is left out, so any difference is a break.
  abidiff "${public[@]}" --no-added-syms --harmless "$stored/$library.abi" "$file" ||
    changed+=("$library")
  abidiff "${public[@]}" "$stored/$library.abi" "$file" |
    grep '^ *\[A\]' | sed "s/^ */$library: new: /" || true
done
if [ ${#changed[@]} -gt 0 ]; then
  echo "abi: the interface of ${changed[*]} changed: programs that are built already would break" >&2
  exit 1
fi
