#!/usr/bin/env bash
# The dynamic symbol table of the measuring library holds exactly the functions of its headers: no C++ symbol leaks.
set -eu
library=$1
headers=$2
declared=$(cat "$headers"/*.h | grep -v '^#' | tr '\n' ' ' | grep -oE 'ZELM_API [^;(]*\(' |
  grep -oE '[A-Za-z0-9_]+ *\($' | tr -d ' (' | sort)
exported=$(nm -D --defined-only "$library" | awk '{print $3}' |
  grep -vE '^(__asan|__ubsan|__sanitizer|_init|_fini)' | sort)
[ "$(echo "$declared" | wc -l)" -gt 20 ] || { echo "$headers were not read"; exit 1; }
if [ "$(echo "$declared" | uniq -d)" ]; then
  echo "declared twice: $(echo "$declared" | uniq -d)"
  exit 1
fi
diff <(echo "$declared") <(echo "$exported") || { echo "left: declared, right: exported"; exit 1; }
count=$(echo "$exported" | wc -l)
[ "$count" -eq 87 ] || { echo "$count exported functions, not 87"; exit 1; }
echo "$count exported functions"
