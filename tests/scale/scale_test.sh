#!/usr/bin/env bash
# A gigabyte imports in the memory that a small file takes, and completely: it is one generated map again and again.
#
#   scale_test.sh GENERATE FOOTPRINT SMALL_FILE WORK

set -euo pipefail
generate=$1 footprint=$2 small=$3 work=$4

rounds=64
closing_record=$'&K\n'
mkdir -p "$work"
map=$work/map.vkm
large=$work/large.vkm
trap 'rm -f "$map" "$large"' EXIT

"$generate" --size 16M --seed 5 -o "$map"
if [ "$(tail -c ${#closing_record} "$map"; echo .)" != "$closing_record." ]; then
  echo "the generated map does not end with its closing record alone" >&2
  exit 1
fi
for ((i = 0; i < rounds; ++i)); do head -c -${#closing_record} "$map"; done >"$large"
printf '%s' "$closing_record" >>"$large"

read -r _ small_peak < <("$footprint" "$small")
read -r elements _ < <("$footprint" "$map")
read -r large_elements large_peak < <("$footprint" "$large")
echo "$(stat -c %s "$large") bytes, $large_elements elements; peak $large_peak KiB, small file $small_peak KiB"
if [ "$large_elements" -ne $((elements * rounds)) ]; then
  echo "expected $((elements * rounds)) elements" >&2
  exit 1
fi
if [ "$small_peak" -le 0 ] || [ "$large_peak" -gt $((small_peak + 16 * 1024)) ]; then
  echo "the large file took more than 16 MiB more" >&2
  exit 1
fi
