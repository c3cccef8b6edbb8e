#include <teleform/cisco/directory.h>
#include <teleform/core/elements.h>
#include <teleform/core/object_pool.h>

#include <cstddef>

CiscoIPPhoneDirectoryEntry::CiscoIPPhoneDirectoryEntry(const std::string& theName,
                                                       const std::string& theTelephone)
    : IPPhoneDirectoryEntry(theName, theTelephone) {}

CiscoIPPhoneDirectoryEntry::~CiscoIPPhoneDirectoryEntry() = default;

void CiscoIPPhoneDirectoryEntry::Render(std::string& out) {
  teleform::Append(out, teleform::DirectoryEntry(name, telephone));
}

CiscoIPPhoneDirectory::CiscoIPPhoneDirectory(const char* theTitle, int theMaxItems)
    : IPPhoneDirectoryXML(theTitle, theMaxItems) {}

CiscoIPPhoneDirectory::~CiscoIPPhoneDirectory() {
  teleform::ObjectPool::Clear<CiscoIPPhoneDirectoryEntry>(entries);
}

bool CiscoIPPhoneDirectory::AppendEntry(const std::string& name, const std::string& telephone) {
  if (static_cast<std::ptrdiff_t>(entries.size()) >= maxItems) return false;
  if (name.empty() || telephone.empty()) return false;
  teleform::ObjectPool::Append<CiscoIPPhoneDirectoryEntry>(entries, name, telephone);
  return true;
}

void CiscoIPPhoneDirectory::SetPreviousURI(const std::string& uri) { previousURI = uri; }

void CiscoIPPhoneDirectory::SetNextURI(const std::string& uri) { nextURI = uri; }

void CiscoIPPhoneDirectory::Render(std::string& out) {
  using namespace teleform;
  AppendDirectory<CiscoIPPhoneDirectoryEntry>(
      out,
      Pieces(Line("<CiscoIPPhoneDirectory", PageLinks(previousURI, nextURI), ">"),
             Line("<Title>", title, "</Title>")),
      entries,
      DirectoryEntry,
      Pieces(Line("</CiscoIPPhoneDirectory>")));
}
