# Extracts the examples of Markdown pages. A block of C++ is followed by a block with its result:
# the value of `out`, or the output of a whole program. A row `ENUMERATOR` | NUMBER | `TEXT` of a
# table tells what the library writes for an enumerator; a table lists all of an enumeration.
#
# Usage: awk -f page_examples.awk PAGE...
#        prints the source of a test for each example and for each table of enumerators
#        awk -v program=FILE -v printed=FILE -f page_examples.awk PAGE
#        writes the first program and its expected output
function finish_block() {
  if (language == "cpp") {
    code = block
    return
  }
  if (code ~ /int main\(/) {
    if (program != "" && !programs++) {
      printf "%s", code >program
      printf "%s", block >printed
    }
  } else if (code != "" && program == "")
    printf "TEST(Documentation, %sLine%d) {\n%sEXPECT_EQ(out, R\"~~(%s)~~\");\n}\n",
      page, FNR, code, block
  code = ""
}
function finish_table() {
  if (cases != "" && program == "") {
    printf "TEST(Documentation, EnumeratorsOf_%s_%d) {\n  using namespace teleform::screens;\n",
      page, ++tables
    printf "%s  const auto areAll = [](decltype(%s) value) {\n", rows, first
    printf "    switch (value) {\n%s        return true;\n    }\n    return false;\n  };\n", cases
    printf "  EXPECT_TRUE(areAll(%s));\n}\n", first
  }
  cases = rows = ""
}
BEGIN {
  if (program == "") {
    print "#include <gtest/gtest.h>\n#include <teleform/screens/compose.h>"
    print "#include <teleform/screens/escape.h>\n#include <teleform/teleform.h>"
    print "#include \"enumerators.h\""
  }
}
FNR == 1 {
  finish_table()
  page = FILENAME
  gsub(/^.*\/|\.md$/, "", page)
}
!is_inside && /^\| `[A-Za-z_0-9:]+` \| (0x)?[0-9]+ \| `[^`]+` \|/ {
  split($0, cells, /` \| | \| `|^\| `|` \|$/)
  if (cases == "") first = cells[2]
  rows = rows "  EXPECT_EQ(static_cast<int>(" cells[2] "), " cells[3] ");\n" \
    "  EXPECT_EQ(Written(" cells[2] "), R\"~~(" cells[4] ")~~\");\n"
  cases = cases "      case " cells[2] ":\n"
  next
}
!is_inside { finish_table() }
/^```/ {
  is_inside = !is_inside
  if (is_inside) language = substr($0, 4)
  else finish_block()
  block = ""
  next
}
is_inside { block = block $0 "\n" }
END {
  finish_table()
  if (program != "" && !programs) exit 1
}
