#!/bin/bash
# What the 32-bit build costs: instructions a call, counted under qemu-i386, and cycles of llvm-mca's model of an in-order
# Atom, which knows no caches and takes every branch for predicted.
#
#   bench/device/count.sh BUILD
#
# Each case runs with few and with many calls; the difference is that of the calls alone. A block's cycles are those of
# one of many iterations of it.
set -euo pipefail
cd "$(dirname "$0")/../.."
build=$1
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
few=2 many=12 iterations=100
cc -std=c99 -O2 -shared -fPIC bench/device/blocks.c -o "$scratch/blocks.so"

blocks_of() # case calls
{
    qemu-i386 -cpu n270 -plugin "$scratch/blocks.so" "$build/qz-isp-device-cases" "$1" "$2" 2>&1 >/dev/null
}

# For the bytes of each block, in turn: instructions and cycles. Calls count as jumps and returns as pops: the tool takes 100
# cycles for a call and 79 for a return, which no processor does that predicts them. An instruction on two pages comes
# without its end, which leaves a prefix and a byte: it is passed over.
model()
{
    sed -E 's/(..)/0x\1,/g; s/,$//; s/^/.byte /' "$scratch/bytes" | awk '{ print "b" NR ":\n" $0 }' >"$scratch/blocks.s"
    as --32 "$scratch/blocks.s" -o "$scratch/blocks.o"
    objdump -d --no-show-raw-insn "$scratch/blocks.o" | sed -nE '
        s/^[0-9a-f]+ <b[0-9]+>:$/# LLVM-MCA-END\n# LLVM-MCA-BEGIN/p
        s/^ +[0-9a-f]+:\t//; T; s/ +(<.*|#.*)?$//; s/\b(cs|ds|notrack|data16) //g
        /^(repn?z|data16|\.byte .*|\(bad\))$/d
        s/^call/jmp/; s/^ret.*/pop %edx/; s/^(j[a-z]+ +)([0-9a-f]+)$/\10x\2/; p' |
        sed 1d >"$scratch/regions.s"
    echo '# LLVM-MCA-END' >>"$scratch/regions.s"
    llvm-mca -mtriple=i386-linux-gnu -mcpu=atom -iterations=$iterations -resource-pressure=0 -instruction-info=0 \
        "$scratch/regions.s" 2>"$scratch/warnings" |
        awk -v n=$iterations '/^Instructions:/ { i = $2 / n } /^Total Cycles:/ { print i, $3 / n }'
}

printf '| %-26s | instructions | model cycles |\n|---|---|---|\n' routine
"$build/qz-isp-device-cases" | while read -r name; do
    { blocks_of "$name" $many; blocks_of "$name" $few | sed 's/^block /block -/'; } |
        awk -v calls=$((many - few)) '$1 == "block" { sum[$3] += $2 }
            END { for (bytes in sum) if (sum[bytes] != 0) print bytes, sum[bytes] / calls }' >"$scratch/counts"
    cut -d' ' -f1 "$scratch/counts" >"$scratch/bytes"
    model >"$scratch/costs"
    [ "$(wc -l <"$scratch/costs")" = "$(wc -l <"$scratch/counts")" ] || { cat "$scratch/warnings"; exit 1; } >&2
    paste -d' ' "$scratch/counts" "$scratch/costs" | awk -v name="$name" '{ i += $2 * $3; c += $2 * $4 }
        END { printf "| %-26s | %12.0f | %12.0f |\n", name, i, c }'
done
