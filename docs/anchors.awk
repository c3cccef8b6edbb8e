#!/usr/bin/awk -f
# Gives the headings of a Markdown page the anchors by which the page links to them. Doxygen wants
# them written out, and no two of them alike in all pages.
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
!is_code { gsub(/\]\(#/, "](#" page "-") }
{ print }
