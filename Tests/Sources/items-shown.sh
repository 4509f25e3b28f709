#!/bin/sh
# Compares the keys that PROGRAM shows of the sample with those of the page that WRITE_ITEMS writes.
set -eu
program=$1
write_items=$2
{
    "$program" --sample --format lines
    # Each layout of type 148.
    for signature in 0 30670 506C0; do
        "$program" --sample --format lines --type 148 --signature $signature
    done
} | "$write_items" --shown
