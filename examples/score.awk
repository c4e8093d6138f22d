# Compares predictions with what was observed.
#
#   awk -v column=strength_mpa -f score.awk fit.csv test.csv predictions.csv
#
# `fit` and `test` have the same columns, the last of them being `column`; `predictions` has one row per row of `test`.
BEGIN { FS = "," }

FNR == 1 {
  file++
  inputs = (file == 1) ? NF - 1 : inputs
  next
}

file == 1 {
  for (i = 1; i <= inputs; i++) {
    if (FNR == 2 || $i < low[i]) low[i] = $i
    if (FNR == 2 || $i > high[i]) high[i] = $i
  }
}

file == 2 {
  count++
  observed[count] = $NF
  sum += $NF
  for (i = 1; i <= inputs; i++) {
    if ($i < low[i] || $i > high[i]) {
      outside++
      break
    }
  }
}

file == 3 {
  predicted[FNR - 1] = $1
  predictions++
}

function Cell(value) { return int((value - least) / (most - least) * (size - 1) + 0.5) }

# Widens the range of all values to round numbers.
function RoundRange(    step) {
  step = 10 ^ int(log(most - least) / log(10))
  least = step * (int(least / step) - (least < 0))
  most = step * (int(most / step) + (most > 0))
}

# Predicted (upwards) against observed (to the right), the diagonal dotted; a character is twice as high as wide.
function Plot(    i, line, mark, x, y) {
  size = 26
  for (i = 1; i <= count; i++) hits[Cell(observed[i]), Cell(predicted[i])]++
  for (y = size - 1; y >= 0; y--) {
    line = ""
    for (x = 0; x < size; x++) {
      mark = hits[x, y]
      line = line (mark > 5 ? "@@" : mark > 2 ? "oo" : mark > 0 ? "::" : x == y ? " ." : "  ")
    }
    sub(/ +$/, "", line)
    printf "%8s |%s\n", (y % 5 == 0) ? sprintf("%.4g", least + (most - least) * y / (size - 1)) : "", line
  }
  line = "         +"
  for (x = 0; x < size; x++) line = line "--"
  print line
  line = sprintf("%9s", "")
  for (x = 0; x < size; x += 5) line = line sprintf(" %-9.4g", least + (most - least) * x / (size - 1))
  sub(/ +$/, "", line)
  print line
}

END {
  if (predictions != count) {
    print "score.awk: " predictions + 0 " predictions for " count + 0 " rows" > "/dev/stderr"
    exit 1
  }
  mean = sum / count
  least = most = observed[1]
  for (i = 1; i <= count; i++) {
    error = predicted[i] - observed[i]
    squares += error * error
    total += (observed[i] - mean) * (observed[i] - mean)
    if (error * error > worst * worst) {
      worst = error
      at = i
    }
    if (observed[i] < least) least = observed[i]
    if (predicted[i] < least) least = predicted[i]
    if (observed[i] > most) most = observed[i]
    if (predicted[i] > most) most = predicted[i]
  }
  printf "%s of %d rows held back, %d of them outside the bounds of the rows learned from:\n\n", column, count, outside
  printf "  R2 %.4f   root mean square error %.2f   largest error %+.2f (observed %.2f, predicted %.2f)\n\n",
         1 - squares / total, sqrt(squares / count), worst, observed[at], predicted[at]
  print "predicted (up) against observed (right); :: 1 or 2 rows, oo 3 to 5, @@ more\n"
  RoundRange()
  Plot()
}
