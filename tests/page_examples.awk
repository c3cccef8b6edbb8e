# Extracts the examples of Markdown pages. A block of C++ is followed by a block with its result:
# the value of `out`, or the output of a whole program.
#
# Usage: awk -f page_examples.awk PAGE...
#        prints the source of a test for each example
#        awk -v program=FILE -v printed=FILE -f page_examples.awk PAGE
#        writes the first program and its expected output
function finish_block() {
  if (language == "cpp") {
    code = block
  } else if (code != "" && code ~ /int main\(/) {
    if (program != "" && !programs++) {
      printf "%s", code >program
      printf "%s", block >printed
    }
    code = ""
  } else if (code != "") {
    page = FILENAME
    gsub(/^.*\/|\.md$/, "", page)
    if (program == "")
      printf "TEST(Documentation, %sLine%d) {\n%sEXPECT_EQ(out, R\"~~(%s)~~\");\n}\n",
        page, FNR, code, block
    code = ""
  }
}
BEGIN {
  if (program == "") {
    print "#include <gtest/gtest.h>\n#include <teleform/screens/compose.h>"
    print "#include <teleform/screens/escape.h>\n#include <teleform/teleform.h>"
  }
}
/^```/ {
  is_inside = !is_inside
  if (is_inside) language = substr($0, 4)
  else finish_block()
  block = ""
  next
}
is_inside { block = block $0 "\n" }
END { if (program != "" && !programs) exit 1 }
