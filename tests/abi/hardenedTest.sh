#!/usr/bin/env bash
# hardenedTest.sh FILE...: release builds are defended against errors in memory. Read from the files themselves, as
# flags alone do not tell what compiler and linker made of them.
set -eu
bad=0

expect() { # what, of which file, command...
  local what=$1 file=$2
  shift 2
  "$@" >/dev/null || { echo "$file: $what"; bad=1; }
}

has() { # text, command...
  local text=$1
  shift
  "$@" | grep -qE "$text"
}

# Processors of x86 and of ARM mark where a jump through an address may land.
landsMarked() { # file: every exported function, or the program's entry into main, begins with the mark
  local machine mark
  machine=$(readelf -h "$1" | sed -n 's/.*Machine: *//p')
  case $machine in
    *X86-64*) mark=endbr64 ;;
    *80386*) mark=endbr32 ;;
    *AArch64*) mark='(bti|paciasp)' ;;
    *) return 0 ;;
  esac
  objdump -d --no-show-raw-insn "$1" | awk -v mark="$mark" '
    /^[0-9a-f]+ <(zelm[A-Za-z0-9]*|main)>:$/ { name = $2; next }
    name { ++functions; if ($0 !~ mark) print "not marked: " name; else ++marked; name = "" }
    END { exit !(functions > 0 && marked == functions) }' >&2
}

for file in "$@"; do
  expect "addresses can be written over after loading (no RELRO)" "$file" has GNU_RELRO readelf -lW "$file"
  expect "addresses are looked up late (no BIND_NOW)" "$file" has 'BIND_NOW|FLAGS_1.*NOW' readelf -dW "$file"
  expect "the stack can be executed" "$file" has 'GNU_STACK.* RW +0' readelf -lW "$file"
  expect "no stack canaries" "$file" has '__stack_chk_fail' readelf -sW "$file"
  expect "can stand at one address only" "$file" has 'Type: *DYN' readelf -hW "$file"
  expect "jumps may land anywhere" "$file" landsMarked "$file"
done
# The checks of sizes; the core formats and copies nothing whose size is not known.
expect "the C library's buffers are not checked" "${!#}" has '__[a-z]+_chk' readelf -sW "${!#}"
exit $bad
