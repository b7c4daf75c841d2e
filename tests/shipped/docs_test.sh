#!/bin/bash
# The documents against the tree: every block of the record in its table, every link leading somewhere, and the record's
# picture as its program draws it.
#
#   docs_test.sh SOURCE_TREE PICTURE
set -euo pipefail
cd "$1"
failed=0
fail()
{
    echo "$1" >&2
    failed=1
}

rows=$(sed -nE 's/^    X\(([a-z0-9_]+), ([0-9]+), ([0-9]+), ([0-9]+)\).*/| \4 | \2 | \3 | `\1` |/p' \
    include/qz_isp/aic_record.h | sed 's/| 48 | `lens_shading`/| 8 + 8 × columns × rows | `lens_shading`/')
[ "$(wc -l <<<"$rows")" = 35 ] || fail "aic_record.h: found $(wc -l <<<"$rows") blocks, expected 35"
while read -r row; do
    grep -qF "$row" docs/record.md || fail "docs/record.md has no row $row"
done <<<"$rows"

while IFS=: read -r document link; do
    target=${link#](}
    target=${target%%[)#]*}
    [ -z "$target" ] || [ -e "$(dirname "$document")/$target" ] || fail "$document links to $target, which is not there"
done < <(grep -oHE '\]\([^):]+\)' ./*.md docs/*.md)

cmp docs/record-layout.svg "$2" || fail 'docs/record-layout.svg: `make pictures` draws it anew'
exit "$failed"
