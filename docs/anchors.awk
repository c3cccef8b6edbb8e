#!/usr/bin/awk -f
# Input filter of Doxygen for Markdown pages: adds an anchor to each heading and rewrites the links.
# Doxygen requires explicit anchors that are unique among all pages, and links to an example by
# reference, not by path.
FNR == 1 {
  page = FILENAME
  gsub(/^.*\/|\.md$/, "", page)
}
/^```/ { is_code = !is_code }
!is_code && /^##+ / {
  anchor = tolower($0)
  sub(/^#+ /, "", anchor)
  gsub(/[^a-z0-9]+/, "-", anchor)
  $0 = $0 " {#" page "-" anchor "}"
}
!is_code {
  gsub(/\]\(#/, "](#" page "-")
  while (match($0, /\]\([a-z\/.]*\.md#/)) {
    other = substr($0, RSTART + 2, RLENGTH - 6)
    sub(/^.*\//, "", other)
    $0 = substr($0, 1, RSTART + 1) "#" other "-" substr($0, RSTART + RLENGTH)
  }
  gsub(/\]\((\.\.\/)?examples\//, "](@ref examples/")
}
{ print }
