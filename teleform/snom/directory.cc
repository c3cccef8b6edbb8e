#include <teleform/core/elements.h>
#include <teleform/core/object_pool.h>
#include <teleform/snom/directory.h>

SnomIPPhoneDirectoryEntry::SnomIPPhoneDirectoryEntry(const std::string& theName,
                                                     const std::string& theTelephone)
    : IPPhoneDirectoryEntry(theName, theTelephone) {}

SnomIPPhoneDirectoryEntry::~SnomIPPhoneDirectoryEntry() = default;

void SnomIPPhoneDirectoryEntry::Render(std::string& out) {
  teleform::Append(out, teleform::DirectoryEntry(name, telephone));
}

SnomIPPhoneDirectory::SnomIPPhoneDirectory(const char* theTitle, int theMaxItems)
    : IPPhoneDirectoryXML(theTitle, theMaxItems) {}

SnomIPPhoneDirectory::~SnomIPPhoneDirectory() {
  teleform::ObjectPool::Clear<SnomIPPhoneDirectoryEntry>(entries);
}

bool SnomIPPhoneDirectory::AppendEntry(const std::string& name, const std::string& telephone) {
  if (name.empty() || telephone.empty()) return false;
  teleform::ObjectPool::Append<SnomIPPhoneDirectoryEntry>(entries, name, telephone);
  return true;
}

void SnomIPPhoneDirectory::SetPreviousURI(const std::string& /*uri*/) {}

void SnomIPPhoneDirectory::SetNextURI(const std::string& /*uri*/) {}

void SnomIPPhoneDirectory::Render(std::string& out) {
  using namespace teleform;
  AppendDirectory<SnomIPPhoneDirectoryEntry>(
      out,
      Pieces(Line("<SnomIPPhoneDirectory>"), Line("<Title>", title, "</Title>")),
      entries,
      DirectoryEntry,
      Pieces(ForEach(softKeys, SoftKeyItem), Line("</SnomIPPhoneDirectory>")));
}
