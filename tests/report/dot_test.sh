#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0

# dot_test.sh PCIINFO CAPTURE: checks that Graphviz draws what `pciinfo tree --format dot` prints.
set -euo pipefail
drawing=$("$1" --root "$2" tree --format dot | dot -Tsvg)
for text in 'PCIe Slot 4' '03:00.0' 'x8, 8 GT/s'; do
  grep -qF -- "$text" <<<"$drawing" || {
    echo "the drawing does not contain '$text'" >&2
    exit 1
  }
done
