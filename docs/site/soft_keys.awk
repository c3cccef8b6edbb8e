#!/usr/bin/awk -f
# Prints docs/soft_keys.md with its tables made from the sources. Fails where the rows of a source
# are not in the order of the enumeration.
#
# Usage: awk -f soft_keys.awk teleform/*/soft_keys.h teleform/*/soft_keys.cc docs/soft_keys.md
FNR == 1 {
  folder = FILENAME
  sub(/\/[^\/]*$/, "", folder)
  row = 0
}
FILENAME ~ /\.h$/ && /^  [A-Z]+_SK_[A-Z0-9_]+ = [0-9]+,/ {
  number = $3 + 0
  if (number != count[folder] + 0) fail($1 " is not the next number")
  names[folder, number] = $1
  count[folder]++
}
FILENAME ~ /\.cc$/ && /^ +"[^"]*",? +\/\/ [A-Z]+_SK_/ {
  if (names[folder, row] != $NF) fail("row " row " is not " names[folder, row])
  split($0, parts, "\"")
  written[folder, row++] = parts[2]
  rows[folder] = row
}
FILENAME !~ /\.md$/ { next }
/^<!-- made from / {
  folder = $4
  print
  print "\n| number | enumerator | written |\n|---:|---|---|"
  if (count[folder] == 0 || count[folder] != rows[folder]) fail(folder " has no or other soft keys")
  for (i = 0; i < count[folder]; ++i)
    print "| " i " | `" names[folder, i] "` | `" written[folder, i] "` |"
  print ""
  made++
  is_inside = 1
}
/^<!-- end / { is_inside = 0 }
!is_inside { print }
function fail(text) {
  print FILENAME ": " text >"/dev/stderr"
  failed = 1
  exit 1
}
END {
  if (failed) exit 1
  for (folder in count) --made
  if (made != 0) exit 1
}
