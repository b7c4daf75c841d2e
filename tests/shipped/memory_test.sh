#!/bin/bash
# Commands whose memory fails: each ends with exit code 1 and a message, or as it does with memory enough, and leaves no
# unfinished file.
#
#   memory_test.sh FAILING_MEMORY PROGRAM
set -uo pipefail
memory=$1
program=$2
directory=$(mktemp -d)
trap 'rm -rf "$directory"' EXIT
cd "$directory" || exit 1
"$program" sample scene scene.json
"$program" sample tuning tuning.json
"$program" tuning pack tuning.json tuning.vuxb
"$program" run --frame all --raw records
"$program" run --makernote makernote
failed=0

# run_failing MODE CALL COMMAND...: what it writes is in out.
run_failing()
{
    rm -f file
    env "$1=1" FAILING_CALL="$2" LD_PRELOAD="$memory" "$program" "${@:3}" > out 2> err
    found=$?
    [ ! -e file ] || mv file out
}

# Numbers up to one: further and further apart, and each of the last.
calls_before()
{
    local call
    for ((call = 0; call < $1 - 24; call += 1 + call / 4)); do
        echo "$call"
    done
    seq "$(($1 > 24 ? $1 - 24 : 0))" "$1"
}

# expect COMMAND...: whether a spread of calls fails, and each of the last ones, in which files are made.
expect()
{
    rm -f file
    "$program" "$@" > whole 2> err
    local code=$? low=0 high=1000000 mode call middle
    [ ! -e file ] || mv file whole
    while [ $((high - low)) -gt 1 ]; do
        middle=$(((low + high) / 2))
        run_failing FAILING_ON "$middle" "$@"
        [ "$found" = "$code" ] && cmp -s whole out && high=$middle || low=$middle
    done
    for mode in FAILING_ONCE FAILING_ON; do
        for call in $(calls_before "$high"); do
            run_failing "$mode" "$call" "$@"
            if { [ "$found" != "$code" ] || ! cmp -s whole out; } && { [ "$found" != 1 ] || [ ! -s err ]; }; then
                echo "$*: without memory in call $call ($mode) it ended with $found: $(head -c 300 err)" >&2
                failed=1
            fi
            if compgen -G 'file*' > /dev/null; then
                echo "$*: without memory in call $call ($mode) it left" file* >&2
                rm -f file*
                failed=1
            fi
        done
    done
}

expect run --explain
expect run --json --frame all
expect run --raw file
expect get checksum --set gain=4
expect report file
expect sweep --over gain=1..8 --jobs 2 --output file
expect sweep --list
expect tuning pack tuning.json file
expect tuning show tuning.vuxb
expect tuning show --values tuning.json
expect tuning show --json tuning.vuxb
expect record show records
expect makernote show makernote
expect diff tuning.json tuning.vuxb
expect sample scene file
expect --help
expect help sweep
exit "$failed"
