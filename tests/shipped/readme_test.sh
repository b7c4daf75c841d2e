#!/bin/bash
# Every command of the README that starts the program ends well, typed as it stands there, in this order.
#
#   readme_test.sh SOURCE_TREE PROGRAM...
set -uo pipefail
source_tree=$1
directory=$(mktemp -d)
trap 'rm -rf "$directory"' EXIT
cd "$directory" || exit 1
mkdir -p build/native
ln -s "$source_tree/tools" tools
printf '#!/bin/sh\nexec %s "$@"\n' "${*:2}" > build/native/qz-isp
chmod +x build/native/qz-isp
PATH=$PWD/build/native:$PATH
failed=0 commands=0
while read -r command; do
    commands=$((commands + 1))
    bash -c "$command" > out 2> err && continue
    # An answer.
    [[ $? = 1 && $command == *'compare '* && ! -s err ]] && continue
    grep -q 'built without the page' err && continue
    echo "$command: $(head -c 300 err)" >&2
    failed=1
done < <(sed -n '/^```sh/,/^```$/p' "$source_tree/README.md" | grep -E '^(build/native/)?qz-isp ')
[ "$commands" -gt 10 ] || failed=1
exit "$failed"
