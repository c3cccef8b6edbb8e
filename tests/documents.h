// All documents in one table: how each is made and what it writes. The table is a plain second idea
// of the library, and what holds for every document is tested on every one.
#pragma once

#include <teleform/teleform.h>

#include <array>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

// Any number below `end`: chance, or bytes of a fuzzer.
using Choose = std::function<unsigned(unsigned end)>;

struct Construction {
  std::string title;
  int maxItems;
  std::string type;
  bool isPassword;
};

struct DocumentClass {
  const char* name;
  const char* text;     // what it writes, with names in braces for what it holds
  const char* element;  // the same of an item or an entry; empty if it has none
  bool enforcesLimit;
  std::unique_ptr<IPPhoneXML> (*make)(const Construction& with);
};
extern const std::vector<DocumentClass> kDocumentClasses;

// The document that a class with this row makes, as text and plain values.
class Model {
 public:
  Model(const DocumentClass& row, const Construction& with);

  std::string Text() const;
  void Set(const std::string& field, const std::string& value) { fields[field] = value; }
  bool Append(const std::string& first, const std::string& second);
  void Sort();
  bool AddAastraKey(int index, const std::string& label, const std::string& uri);
  bool AddKeyItem(const std::string& name, const std::string& url);

 private:
  const DocumentClass* row;
  int maxItems;
  std::map<std::string, std::string> fields;
  std::vector<std::pair<std::string, std::string>> elements;
};

// `text` with the values of `fields` for the names in braces.
std::string Filled(const std::string& text, const std::map<std::string, std::string>& fields);

// What the operations of a document are given.
struct Arguments {
  std::array<std::string, 4> texts;
  int command = 0;
  int index = 1;
  int timeout = 0;
  int type = 0;
  unsigned long flags = 0;
  bool isNull = false;  // whether an empty C string is a null pointer
};
Arguments ChooseArguments(const Choose& choose);

// Something that a caller can do to a document, and what the model makes of it. Both return what
// the operation returns, or true.
struct Operation {
  const char* name;
  std::function<bool(IPPhoneXML&)> apply;
  std::function<bool(Model&)> expect;
};

// Everything that a caller can do to fill this document.
std::vector<Operation> OperationsOn(IPPhoneXML& document, const Arguments& arguments);

// Fills a document with all of these.
void FillWith(IPPhoneXML& document, const Arguments& arguments);

// Makes a document of this class, does what `choose` says and compares it with the model after each
// operation.
// @throws std::logic_error that tells what differs.
void CompareWithModel(const DocumentClass& row, const Choose& choose);

// The classes of which the makers' pages show an example.
extern const std::set<std::string> kShownClasses;

std::string Rendered(IPPhoneXML& document);
