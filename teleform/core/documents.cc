#include <teleform/core/documents.h>
#include <teleform/core/sort_by_name.h>

IPPhoneXML::IPPhoneXML(const char* theTitle)
    : title(theTitle != nullptr ? theTitle : ""), contentType("text/xml") {}

IPPhoneXML::~IPPhoneXML() = default;

void IPPhoneXML::SetAttributes(unsigned long flags) {
  destroyOnExit = (flags & AttrDestroyOnExit) != 0;
  beep = (flags & AttrBeep) != 0;
}

IPPhoneTextScreenXML::IPPhoneTextScreenXML(const char* theTitle) : IPPhoneXML(theTitle) {}

IPPhoneTextScreenXML::~IPPhoneTextScreenXML() = default;

IPPhoneMenuXML::IPPhoneMenuXML(const char* theTitle, int theMaxItems)
    : IPPhoneXML(theTitle), maxItems(theMaxItems) {}

IPPhoneMenuXML::~IPPhoneMenuXML() = default;

void IPPhoneMenuXML::SetPreviousURI(const std::string& /*uri*/) {}

void IPPhoneMenuXML::SetNextURI(const std::string& /*uri*/) {}

IPPhoneDirectoryXML::IPPhoneDirectoryXML(const char* theTitle, int theMaxItems)
    : IPPhoneXML(theTitle), maxItems(theMaxItems) {}

// The order in which a vector destroys its elements depends on the standard library.
IPPhoneDirectoryXML::~IPPhoneDirectoryXML() {
  for (auto& entry : entries) entry.reset();
}

bool IPPhoneDirectoryXML::AppendEntry(const std::string& /*name*/,
                                      const std::string& /*telephone*/) {
  return false;
}

void IPPhoneDirectoryXML::SetPreviousURI(const std::string& /*uri*/) {}

void IPPhoneDirectoryXML::SetNextURI(const std::string& /*uri*/) {}

void IPPhoneDirectoryXML::SortDirectoryItems() { teleform::SortByName(entries); }

IPPhoneInputXML::IPPhoneInputXML(const char* theTitle) : IPPhoneXML(theTitle) {}

IPPhoneInputXML::~IPPhoneInputXML() = default;

IPPhoneExecuteXML::IPPhoneExecuteXML(const char* theTitle) : IPPhoneXML(theTitle) {}

IPPhoneExecuteXML::~IPPhoneExecuteXML() = default;

IPPhoneStatusXML::IPPhoneStatusXML() : IPPhoneXML("") {}

IPPhoneStatusXML::~IPPhoneStatusXML() = default;
