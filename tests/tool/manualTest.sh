#!/usr/bin/env bash
# Manual pages and completion say what --help says: every subcommand, every option, every choice. Formatters and shells
# that are here find nothing wrong with them.
set -euo pipefail
export LC_ALL=C.UTF-8
zelm=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failed=0
wrong() {
  echo "$*"
  failed=1
}

"$zelm" manual -o "$work" --quiet
pages=$work/man/man1
subcommands=$("$zelm" --help | awk '/^Subcommands:/ { inside = 1; next } /^$/ { inside = 0 }
  inside && /^  [a-z]/ { print $1 }')
[ "$(wc -w <<<"$subcommands")" -ge 13 ] || wrong "--help lists the subcommands $subcommands"
[ "$(ls "$pages")" = "$( (echo zelm.1; printf 'zelm-%s.1\n' $subcommands) | sort)" ] || wrong "pages: $(ls "$pages")"
grep -qw manual <<<"$subcommands" && wrong "--help shows zelm manual"

options_of() { # words of a command: its options, a name a line
  "$zelm" "$@" --help | grep -oE '^  (-[A-Za-z],)?--[a-z0-9-]+' | tr -d ' ' | tr ',' '\n' | sort
}
plain() { # page
  groff -man -Tutf8 -P-c -rLL=300n "$1" | sed 's/.\x08//g'
}

for name in '' $subcommands; do
  page=$pages/zelm${name:+-$name}.1
  options=$(options_of $name)
  [ "$(wc -l <<<"$options")" -ge 3 ] || wrong "$name: options $options"
  tags=$(grep -A1 '^\.TP' "$page")
  for option in $options; do
    grep -qF -- "\\fB${option//-/\\-}\\fR" <<<"$tags" || wrong "$page: no $option"
  done
  [ "$(grep -c '^\.TH' "$page")" = 1 ] || wrong "$page: no title"
  if command -v groff >/dev/null; then
    said=$(groff -man -ww -z -Tutf8 "$page" 2>&1)
    [ -z "$said" ] || wrong "groff: $said"
    # What is to be typed comes out as it went in.
    if [ -n "$name" ]; then
      example=$("$zelm" "$name" --help | sed -n '/^Example:/,$ { /^  / { s/^ *//; p; q } }')
      text=$(plain "$page")
      grep -qF -- "$example" <<<"$text" || wrong "$page: its example is not $example"
    fi
  fi
  if command -v mandoc >/dev/null; then
    # A page without a date is the same whenever it is made.
    said=$(mandoc -T lint -W warning "$page" 2>&1 | grep -v 'missing date' || true)
    [ -z "$said" ] || wrong "$said"
  fi
done
text=$(plain "$pages/zelm-simulate.1")
grep -q 'One of png, tif, bmp, pgm\. *Default: png\.' <<<"$text" || wrong "no choices of --format"

# Completion in bash, as it calls the function. The script's own output ends when it is wrong.
complete_bash() { # words of a command line, the last being completed
  bash -c 'share=$1; shift
    . "$share/bash-completion/completions/zelm"
    compopt() { echo "compopt $*"; }
    COMP_WORDS=("$@") COMP_CWORD=$(($# - 1))
    _zelm
    printf "%s\n" "${COMPREPLY[@]}"' complete "$work" "$@" | sort
}
expect_bash() { # what is offered, then the words
  local expected=$1 offered
  shift
  offered=$(complete_bash "$@")
  [ "$offered" = "$expected" ] || wrong "bash: zelm ${*:2}: offers $offered instead of $expected"
}
without_files=$'compopt +o default\n'
lines() {
  printf '%s\n' "$@" | sort
}
expect_bash "$(lines $subcommands 'compopt +o default')" zelm ''
expect_bash "$(lines 'compopt +o default' simulate)" zelm sim
for name in $subcommands; do
  expect_bash "$(lines 'compopt +o default' $(options_of "$name" | grep '^--\|^-[A-Za-z]$'))" zelm "$name" -
done
expect_bash "$(lines 'compopt +o default' bmp pgm png tif)" zelm simulate rig.json --format ''
expect_bash "$(lines 'compopt +o default' pgm png)" zelm simulate --format = p
expect_bash "$(lines 'compopt +o default' bmp pgm png tif)" zelm simulate --format =
expect_bash "$(lines 'compopt +o default' '')" zelm simulate --views ''
expect_bash '' zelm simulate -o '' # readline's file names
expect_bash '' zelm info ''

if command -v zsh >/dev/null; then
  zsh -n "$work/zsh/site-functions/_zelm" || wrong "zsh"
fi
if command -v fish >/dev/null; then
  export HOME=$work
  fish_script=$work/fish/vendor_completions.d/zelm.fish
  fish --no-execute "$fish_script" || wrong "fish"
  for name in '' $subcommands; do
    offered=$(fish -c "source '$fish_script'; complete -C 'zelm $name --'" | cut -f1 | grep '^--' | sort -u)
    [ "$offered" = "$(options_of $name | grep '^--' | sort -u)" ] || wrong "fish: zelm $name --: offers $offered"
  done
  offered=$(fish -c "source '$fish_script'; complete -C 'zelm simulate --format '" | cut -f1 | sort)
  [ "$offered" = "$(lines bmp pgm png tif)" ] || wrong "fish: --format: offers $offered"
fi

# Again over the same folder; and not where there can be no folder.
said=$("$zelm" manual -o "$work")
grep -q "$(wc -l < <(ls "$pages")) manual pages" <<<"$said" || wrong "the second time"
touch "$work/file"
if "$zelm" manual -o "$work/file" 2>"$work/refused"; then
  wrong "a file is taken for a folder"
fi
[ "$(wc -l <"$work/refused")" = 1 ] && grep -q "$work/file" "$work/refused" || wrong "$(cat "$work/refused")"
exit $failed
