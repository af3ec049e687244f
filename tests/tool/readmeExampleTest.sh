#!/usr/bin/env bash
# The README's example is the sample program, and prints what the README says.
set -eu
readme=$1
source=$2
program=$3
block() { # number of the fenced block that starts with a line matching the pattern
  awk -v pattern="$1" '/^```/ { if (inside) { if (found) exit; inside = 0; text = ""; next } inside = 1; next }
    inside { if ($0 ~ pattern) found = 1; text = text $0 "\n" } END { if (found) printf "%s", text }' "$readme"
}
diff <(block '^int main') "$source" || { echo "left: README, right: $source"; exit 1; }
diff <(block '^left camera:') <("$program") || { echo "left: README, right: the program's output"; exit 1; }
