# Splits a CSV table into a part to learn from and a part to test on, the same on every machine.
#
#   awk -v count=300 -v fit=fit.csv -v test=test.csv -f split.awk table.csv table.csv
#
# The table is read twice. Rows whose inputs, all columns but the last, repeat those of an earlier row are left out:
# they would be predicted from what was learned. Of the others `count` go to `fit`, evenly spread, the rest to `test`.
BEGIN { FS = "," }

FNR == 1 {
  pass++
  if (pass == 2) {
    print > fit
    print > test
  }
  next
}

{ inputs = substr($0, 1, length($0) - length($NF)) }

pass == 1 {
  if (!(inputs in first)) {
    first[inputs] = FNR
    different++
  }
}

pass == 2 && first[inputs] == FNR {
  # Row k is taken where k * count / different passes a whole number, which happens `count` times.
  row++
  is_taken = int(row * count / different) > int((row - 1) * count / different)
  print > (is_taken ? fit : test)
}
