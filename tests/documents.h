// A table of all documents and a reference model of them. The tests and the fuzzer compare every
// document with the model.
#pragma once

#include <teleform/teleform.h>

#include <array>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

// Returns a number below `end`, from a random generator or from the fuzzer's input.
using RandomBelow = std::function<unsigned(unsigned end)>;

struct ConstructorArguments {
  std::string title;
  int maxItems;
  std::string type;
  bool isPassword;

  // For classes whose title is a C string: an empty one is null.
  const char* CTitle() const { return title.empty() ? nullptr : title.c_str(); }
};

struct DocumentClass {
  const char* name;
  std::unique_ptr<IPPhoneXML> (*make)(const ConstructorArguments& arguments);
  const char* documentTemplate;      // the expected output, with placeholders in braces
  const char* elementTemplate = "";  // the same for one item or entry
  bool enforcesLimit = false;
};
extern const std::vector<DocumentClass> kDocumentClasses;

// Replaces the placeholders in braces by the values of `fields`; a missing field is empty.
std::string FillTemplate(const std::string& text, const std::map<std::string, std::string>& fields);

// The arguments of a document's operations.
struct Arguments {
  std::array<std::string, 4> texts;
  int command = 0;
  int index = 1;
  int timeout = 0;
  int type = 0;
  unsigned long flags = 0;
  bool isNull = false;  // whether to pass empty C strings as null pointers
};
Arguments RandomArguments(const RandomBelow& randomBelow);

class Model;  // of a document, for comparison

// An operation on a document and its equivalent on the model. Both return the operation's result,
// or true if it has none.
struct Operation {
  const char* name;
  std::function<bool(IPPhoneXML&)> apply;
  std::function<bool(Model&)> expect;
};

// All operations of the document.
std::vector<Operation> OperationsOn(IPPhoneXML& document, const Arguments& arguments);

// Applies all operations to the document.
void ApplyAll(IPPhoneXML& document, const Arguments& arguments);

// Constructs a document, applies random operations and compares it with the model after each one.
// @throws std::logic_error that describes the first difference.
void CompareWithModel(const DocumentClass& documentClass, const RandomBelow& randomBelow);

// A directory with public entries.
struct OpenDirectory : CiscoIPPhoneDirectory {
  OpenDirectory() : CiscoIPPhoneDirectory("Own", 1 << 30) {}
  using CiscoIPPhoneDirectory::entries;
};

std::string RenderToString(IPPhoneXML& document);
