// What the library writes for an enumerator, for the tables of the documentation.
#pragma once

#include <gtest/gtest.h>
#include <teleform/screens/makers.h>
#include <teleform/screens/soft_keys.h>
#include <teleform/teleform.h>

#include <string>

#include "documents.h"

namespace {

std::string TextBetween(const char* open, const char* close, IPPhoneXML& document) {
  const std::string out = RenderToString(document);
  const std::size_t begin = out.find(open) + std::string(open).size();
  return out.substr(begin, out.find(close, begin) - begin);
}

// One for each enumeration; a table that is missing leaves its function unused, which is an error.
std::string Written(IPPhoneAttributes flag) {
  AastraIPPhoneExecute document("");
  document.SetAttributes(flag);
  return TextBetween("<AastraIPPhoneExecute ", ">", document);
}
std::string Written(IPPhoneStatusXML::MsgType type) {
  AastraIPPhoneStatus document;
  document.SetMessage("", "", 0, type, 0);
  return TextBetween("<Message ", ">", document);
}
std::string Written(AastraSoftKeyCommands command) {
  AastraIPPhoneExecute document("");
  document.AddSoftKey(1, "", command);
  return TextBetween("<URI>", "</URI>", document);
}
std::string Written(SnomSoftKeyCommands command) {
  SnomIPPhoneTextScreen document("");
  document.AddSoftKey(command, "");
  return TextBetween("<Name>", "</Name>", document);
}
std::string Written(YealinkSoftKeyCommands command) {
  YealinkIPPhoneMenu document("", 1);
  document.AddSoftKey(command, "");
  return TextBetween("<Name>", "</Name>", document);
}
std::string Written(teleform::screens::Maker maker) { return std::string(FactsOf(maker).slug); }
std::string Written(teleform::screens::SoftKeyRole role) { return std::string(LabelOf(role)); }

}  // namespace
