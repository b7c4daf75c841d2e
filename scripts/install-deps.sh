#!/bin/bash
# Installs the Debian packages of one or more groups, and only those that are missing. Where it cannot, it says which
# packages are needed.
#
#   scripts/install-deps.sh GROUP...     groups: run test check bench device fuzz determinism verify coverage docs package
#                                                node report module
set -euo pipefail

run="g++ make cmake ninja-build libcli11-dev nlohmann-json3-dev libfmt-dev"
test="$run g++-multilib qemu-user googletest pkgconf"
check="$test git clang-format clang-tidy cppcheck libmpfr-dev"
bench="$run libbenchmark-dev libeigen3-dev libopencv-core-dev libopencv-imgproc-dev libopenblas-dev libyuv-dev
       libxxhash-dev"
device="$run g++-multilib binutils qemu-user llvm"
fuzz="$run clang libclang-rt-14-dev llvm"
determinism="$test clang musl-tools"
verify="$run libmpfr-dev"
coverage="$test gcovr"
docs="doxygen make"
node=""
type -P node npm > /dev/null || node="nodejs npm" # they may also come from elsewhere
report="$run $node chromium"
module="$run $node clang-19 lld-19 wasi-libc libc++-19-dev-wasm32 libc++abi-19-dev-wasm32 libclang-rt-19-dev-wasm32"
package="$test dpkg-dev"
all_groups="run test check bench device fuzz determinism verify coverage docs package node report module"

for group in "$@"; do
    if [[ " $all_groups " != *" $group "* ]]; then
        echo "install-deps.sh: found group '$group', expected one of: $all_groups" >&2
        exit 2
    fi
done

if ! type -P apt-get dpkg-query > /dev/null; then
    echo "This system has no apt. These packages of Debian 12, or what they are called here, are needed:" >&2
    for group in "$@"; do
        echo "  $group:" ${!group} >&2
    done
    echo "Once they are installed: make INSTALL_DEPS=true and the target." >&2
    exit 1
fi

missing=()
for group in "$@"; do
    for name in ${!group}; do
        state=$(dpkg-query --show --showformat='${db:Status-Status}' "$name" 2>/dev/null || true)
        if [ "$state" != installed ] && [[ " ${missing[*]} " != *" $name "* ]]; then
            missing+=("$name")
        fi
    done
done
if [ ${#missing[@]} -eq 0 ]; then
    exit 0
fi

as_root=()
if [ "$(id -u)" -ne 0 ]; then
    as_root=(sudo)
    if ! type -P sudo > /dev/null; then
        echo "Missing packages, which take root or sudo to install: apt-get install ${missing[*]}" >&2
        exit 1
    fi
fi
echo "Installing: ${missing[*]}" >&2
# Standard output stays free for what the caller prints.
"${as_root[@]}" apt-get update -qq >&2
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >&2
