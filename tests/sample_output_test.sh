#!/bin/bash
# What the program prints for the sample against sample_output.txt, which has a line for each command: the SHA-256 of its
# output, and the command as a shell takes it, in tools/sample. With --update writes them down instead.
#
#   sample_output_test.sh [--update] PROGRAM...     the qz-isp program, and what starts it before
set -euo pipefail
expected=$(realpath "$(dirname "$0")")/sample_output.txt
update=false
if [ "$1" = --update ]; then
    update=true
    shift
fi

program=("$@")
qz-isp() { "${program[@]}" "$@" 2>/dev/null; }
cd "$(dirname "$expected")/../tools/sample"
found=$(mktemp)
trap 'rm -f "$found"' EXIT
while read -r _ command; do
    digest=$(eval "$command" | sha256sum) || true # differences have an exit code of their own
    echo "${digest%% *} $command"
done <"$expected" >"$found"

if $update; then
    cp "$found" "$expected"
elif ! diff "$expected" "$found"; then
    echo "The output for the sample differs from $expected. A change on purpose: make digests." >&2
    exit 1
fi
