// Turns the examples of Markdown pages into tests: what a block of C++ leaves in `out` must be the
// text of the block that follows it. A block with a main() is a program of its own, and not for
// here.
//
// Usage: documentation TEST_SOURCE PAGE...
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

int main(int argc, char** argv) {
  if (argc < 3) return 2;
  std::ofstream source(argv[1]);
  source << "#include <gtest/gtest.h>\n#include <teleform/teleform.h>\n#include \"documents.h\"\n";
  std::string shown;
  int examples = 0;
  for (int page = 2; page < argc; ++page) {
    std::ifstream file(argv[page]);
    std::string line, language, block, code;
    for (int number = 1; std::getline(file, line); ++number) {
      if (line.rfind("```", 0) != 0) {
        block += line + "\n";
      } else if (language.empty()) {
        language = line.substr(3);
        if (language.empty()) language = "text";
        block.clear();
      } else {
        if (language == "cpp") {
          code = block.find("int main") == block.npos ? block : "";
        } else if (!code.empty()) {
          const std::string name = std::filesystem::path(argv[page]).stem().string();
          source << "TEST(Documentation, " << name << "Line" << number << ") {\n"
                 << code << "EXPECT_EQ(out, R\"~~(" << block << ")~~\");\n}\n";
          shown += "{\"" + code.substr(0, code.find(' ')) + "\", R\"~~(" + block + ")~~\"},\n";
          code.clear();
          ++examples;
        }
        language.clear();
      }
    }
    if (!file.eof()) {
      std::cerr << "documentation: " << argv[page] << " can't be read\n";
      return 1;
    }
  }
  source << "const std::map<std::string, std::string> kShownDocuments = {" << shown << "};\n";
  std::cout << examples << " examples\n";
  return source.flush() && examples > 0 ? 0 : 1;
}
