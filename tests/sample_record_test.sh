#!/bin/bash
# The records and makernotes of two scenes against the SHA-256 written down in sample_record.txt: of the sample scene each
# frame's number, name, bytes of the record in use and digest, then that of its makernote; of untuned_frames.json, run
# without tuning records, the digest of all records and that of the makernote. With --update writes them down instead.
#
#   sample_record_test.sh [--update] PROGRAM...     the qz-isp program, and what starts it before
set -euo pipefail
here=$(dirname "$0")
expected=$here/sample_record.txt
update=false
if [ "$1" = --update ]; then
    update=true
    shift
fi

found=$(mktemp)
trap 'rm -f "$found"' EXIT
program=("$@")
digest()
{
    "${program[@]}" run "$@" - 2>/dev/null | sha256sum | cut -d ' ' -f 1
}

{
    "$@" run --frame all 2>/dev/null | sed -nE 's/^frame ([0-9]+ ".*": [0-9]+) bytes in use$/\1/p' |
        while read -r number rest; do
            echo "$number $rest $(digest --frame "$number" --raw)"
        done
    echo "makernote $(digest --makernote)"
    untuned=(--tuning - --scene "$here/untuned_frames.json")
    no_records='{"records": []}'
    echo "untuned $(digest "${untuned[@]}" --frame all --raw <<<"$no_records")"
    echo "untuned makernote $(digest "${untuned[@]}" --makernote <<<"$no_records")"
} >"$found"

if $update; then
    cp "$found" "$expected"
elif ! diff "$expected" "$found"; then
    echo "Records or makernotes differ from $expected. A change on purpose: make digests." >&2
    exit 1
fi
