// All screens in one table, and the texts that the tests put into them.
#pragma once

#include <teleform/screens/compose.h>

#include <functional>
#include <string>
#include <vector>

namespace teleform::screens {

// A text from outside and what becomes of it.
struct SampleText {
  std::string text;
  std::string escaped;
  std::string encoded;  // with all bytes of "+*:@" kept
};
extern const std::vector<SampleText> kSampleTexts;

// A screen whose texts and URIs are all `text`.
struct SampleScreen {
  const char* name;
  std::function<Document(Maker, const std::string& text, const std::vector<SoftKey>& keys)> compose;
};
extern const std::vector<SampleScreen> kSampleScreens;

// One key for the phone's own action, and one that loads `text`.
std::vector<SoftKey> SampleKeys(const std::string& text);

}  // namespace teleform::screens
