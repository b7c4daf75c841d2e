#!/bin/bash
# The documents against the tree: every link leads somewhere, and the record's picture is as its program draws it.
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

while IFS=: read -r document link; do
    target=${link#](}
    target=${target%%[)#]*}
    [ -z "$target" ] || [ -e "$(dirname "$document")/$target" ] || fail "$document links to $target, which is not there"
done < <(grep -oHE '\]\([^):]+\)' ./*.md docs/*.md)

cmp docs/record-layout.svg "$2" || fail 'docs/record-layout.svg: `make pictures` draws it anew'
exit "$failed"
