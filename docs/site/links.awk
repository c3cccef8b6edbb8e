#!/usr/bin/awk -f
# Reports links to a missing file in HTML and Markdown pages, and to a missing anchor in HTML.
FNR == 1 {
  folder = FILENAME
  sub(/[^\/]*$/, "", folder)
  is_html = FILENAME ~ /\.html$/
  pattern = is_html ? " (id|name|href|src)=\"[^\"]*\"" : "\\]\\([^)]*\\)"
}
!is_html && /^```/ { is_code = !is_code }
!is_code {
  for (; match($0, pattern); $0 = substr($0, RSTART + RLENGTH)) {
    link = substr($0, RSTART, RLENGTH - 1)
    is_anchor = link ~ /^ (id|name)=/
    sub(/^[^"(]*["(]/, "", link)
    sub(/\?[^#]*/, "", link)
    if (is_anchor) is_there[FILENAME "#" link] = 1
    else if (link ~ /^#./) places[FILENAME ": " link] = FILENAME link
    else if (link !~ /^([a-z]+:|#$)/) {
      place = folder link
      while (sub(/[^\/.]+\/\.\.\//, "", place)) continue
      places[FILENAME ": " link] = place
    }
  }
}
END {
  for (link in places) {
    file = place = places[link]
    sub(/#.*/, "", file)
    if (!(file in is_there)) is_there[file] = system("test -e '" file "'") == 0
    if (is_there[file] && (file ~ /\.md$/ || is_there[place])) continue
    print link " leads nowhere"
    broken = 1
  }
  exit broken
}
