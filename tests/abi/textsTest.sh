#!/usr/bin/env bash
# What no compiler or formatter sees: links between documents lead somewhere, every anchor of docs/decisions.md that the
# tree names is there once, and comments name parameters in the order of the signature.
set -u
export LC_ALL=C.UTF-8
cd "$1" || exit 1
failed=0

anchors=$(grep -oE '<a id="[^"]+"' docs/decisions.md | cut -d'"' -f2 | sort)
[ -n "$anchors" ] || { echo "docs/decisions.md has no anchors"; exit 1; }
if [ "$(echo "$anchors" | uniq -d)" ]; then
  echo "anchors that are not unique: $(echo "$anchors" | uniq -d)"
  failed=1
fi
named=$(grep -rohE 'decisions\.md#[a-z0-9-]+' 3DLib bench docs include measure render src tests tools ./*.md |
  cut -d'#' -f2 | sort -u)
missing=$(comm -23 <(echo "$named") <(echo "$anchors" | sort -u))
if [ -n "$missing" ]; then
  echo "named, but not in docs/decisions.md: $missing"
  failed=1
fi

for document in ./*.md docs/*.md samples/*/*.md; do
  for link in $(grep -oE '\]\([^)#:@ ]+' "$document" | cut -c3-); do
    [ -e "$(dirname "$document")/$link" ] || { echo "$document links to $link, which is not there"; failed=1; }
  done
done

# shellcheck disable=SC2016
perl -0777 -e '
  my ($functions, $wrong) = (0, 0);
  for my $file (@ARGV) {
    open my $in, "<", $file or die $file;
    my $text = <$in>;
    while ($text =~ m{((?:^///.*\n)+)^ZELM_API[^;(]*?(\w+)\s*\(([^;]*)\);}mg) {
      my ($comment, $name, $signature) = ($1, $2, $3);
      my @declared = map { s/\[\d*\]//gr =~ /(\w+)\s*$/ ? $1 : () } grep { !/^\s*void\s*$/ } split /,/, $signature;
      my @named = map { split /\s*,\s*/ } $comment =~ /\@param\s+(\w+(?:\s*,\s*\w+)*)/g;
      $functions += 1;
      next if "@declared" eq "@named";
      print "$file: $name(@declared) is documented as (@named)\n";
      $wrong = 1;
    }
  }
  print "$functions functions\n";
  exit($wrong || $functions < 100);
' include/zelm/*.h include/zelmMeasure/*.h include/zelmMeasure.h || failed=1
exit $failed
