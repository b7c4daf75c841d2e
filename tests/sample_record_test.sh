#!/bin/bash
# The records of the sample scene against the ones written down in sample_record.txt: for each frame its number and name,
# the bytes of the record in use, and their SHA-256. With --update writes them down instead.
#
#   sample_record_test.sh [--update] PROGRAM...     the qz-isp program, and what starts it before
set -euo pipefail
expected=$(dirname "$0")/sample_record.txt
update=false
if [ "$1" = --update ]; then
    update=true
    shift
fi

found=$(mktemp)
trap 'rm -f "$found"' EXIT
"$@" run --frame all 2>/dev/null | sed -nE 's/^frame ([0-9]+ ".*": [0-9]+) bytes in use$/\1/p' |
    while read -r number rest; do
        digest=$("$@" run --frame "$number" --raw - 2>/dev/null | sha256sum)
        echo "$number $rest ${digest%% *}"
    done >"$found"

if $update; then
    cp "$found" "$expected"
elif ! diff "$expected" "$found"; then
    echo "The records of the sample scene differ from $expected. A change on purpose: make digests." >&2
    exit 1
fi
