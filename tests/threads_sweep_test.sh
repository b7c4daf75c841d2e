#!/bin/bash
# Sweeps by several workers give what one gives, without a race: over inputs, a varied tuning, and the makernote.
#
#   threads_sweep_test.sh PROGRAM     qz-isp with the thread sanitizer
set -feuo pipefail
for options in "--over sharpness=-128..127 --over hue=-8..8" \
    "--over tuning:xnr[0/0].rows[0].param=0..5000 --fields xnr.*,xnr.record,xnr.rows" \
    "--frame all --over gain=1..4:0.005 --fields makernote.edge_enhancement,makernote.version"; do
    cmp <("$1" sweep $options --jobs 4) <("$1" sweep $options --jobs 1)
    "$1" sweep $options --jobs 4 --output /dev/null
done
