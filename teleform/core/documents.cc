#include <teleform/core/documents.h>

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

IPPhoneInputXML::IPPhoneInputXML(const char* theTitle) : IPPhoneXML(theTitle) {}

IPPhoneInputXML::~IPPhoneInputXML() = default;

IPPhoneExecuteXML::IPPhoneExecuteXML(const char* theTitle) : IPPhoneXML(theTitle) {}

IPPhoneExecuteXML::~IPPhoneExecuteXML() = default;

IPPhoneStatusXML::IPPhoneStatusXML() : IPPhoneXML("") {}

IPPhoneStatusXML::~IPPhoneStatusXML() = default;
