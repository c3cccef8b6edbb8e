// A table of all documents and a reference model of them. The tests and the fuzzer compare every
// document with the model.
#pragma once

#include <teleform/teleform.h>

#include <array>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

// Returns a number below `end`, from a random generator or from the fuzzer's input.
using RandomBelow = std::function<unsigned(unsigned end)>;

struct ConstructorArguments {
  std::string title;
  int maxItems;
  std::string type;
  bool isPassword;
};

struct DocumentClass {
  const char* name;
  const char* documentTemplate;  // the expected output, with placeholders in braces
  const char* elementTemplate;   // the same for one item or entry; empty if there are none
  bool enforcesLimit;
  std::unique_ptr<IPPhoneXML> (*make)(const ConstructorArguments& arguments);
};
extern const std::vector<DocumentClass> kDocumentClasses;

// The reference model of a document: its expected state, from which it renders the expected text.
class Model {
 public:
  Model(const DocumentClass& documentClass, const ConstructorArguments& arguments);

  std::string Render() const;
  void Set(const std::string& field, const std::string& value) { fields[field] = value; }
  bool Append(const std::string& first, const std::string& second);
  void Sort();
  bool AddAastraKey(int index, const std::string& label, const std::string& uri);
  bool AddKeyItem(const std::string& name, const std::string& url);

 private:
  const DocumentClass* documentClass;
  int maxItems;
  std::map<std::string, std::string> fields;
  std::vector<std::pair<std::string, std::string>> elements;
};

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

// The classes with an example on their maker's page of the documentation.
extern const std::set<std::string> kShownClasses;

std::string RenderToString(IPPhoneXML& document);
