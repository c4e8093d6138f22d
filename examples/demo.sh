#!/bin/sh
# demo.sh <build tree>: learns the strength of concrete from 300 mixes and predicts the mixes held back.
set -eu
zor=$(cd "$1" && pwd)/tools/zor/zor
examples=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

say() { printf '\n%s\n\n' "$*"; }

table=$examples/data/concrete_mix.csv
awk -v count=300 -v fit=fit.csv -v test=test.csv -f "$examples/split.awk" "$table" "$table"

say '$ zor fit fit.csv --outputs strength_mpa --predict test.csv --extrapolate --output predictions.csv'
"$zor" fit fit.csv --outputs strength_mpa --predict test.csv --extrapolate --output predictions.csv

say 'How good is that CoP? Rows that the model never saw tell.'
awk -v column=strength_mpa -f "$examples/score.awk" fit.csv test.csv predictions.csv
