#!/bin/bash
# The table of docs/performance.md: medians of the ratios that several runs of qz-isp-bench printed.
#
#   bench/medians.sh LOG...
set -euo pipefail
echo '| routine | size | peer | ratio | target |'
echo '|---|---|---|---|---|'
awk -F ' *[|] *' '
    /^[|] `/ && $6 + 0 > 0 {
        key = "| " $2 " | " $3 " | " $4 " |"
        if (!(key in runs)) { keys[++rows] = key; sub(/ missed/, "", $7); target[key] = $7 }
        ratio[key, ++runs[key]] = $6
    }
    END {
        for (r = 1; r <= rows; ++r) {
            n = runs[keys[r]]
            for (i = 2; i <= n; ++i)
                for (k = i; k > 1 && ratio[keys[r], k] < ratio[keys[r], k - 1]; --k) {
                    swapped = ratio[keys[r], k]
                    ratio[keys[r], k] = ratio[keys[r], k - 1]
                    ratio[keys[r], k - 1] = swapped
                }
            median = ratio[keys[r], int((n + 1) / 2)]
            print keys[r], median, "|", target[keys[r]] (target[keys[r]] + 0 > 0 && median > target[keys[r]] + 0 ? ", missed" : "") " |"
        }
    }' "$@"
