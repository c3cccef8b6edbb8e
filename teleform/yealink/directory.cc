#include <teleform/core/elements.h>
#include <teleform/core/object_pool.h>
#include <teleform/yealink/directory.h>

YealinkIPPhoneDirectoryEntry::YealinkIPPhoneDirectoryEntry(const std::string& theName,
                                                           const std::string& theTelephone)
    : IPPhoneDirectoryEntry(theName, theTelephone) {}

YealinkIPPhoneDirectoryEntry::~YealinkIPPhoneDirectoryEntry() = default;

void YealinkIPPhoneDirectoryEntry::Render(std::string& out) {
  teleform::Append(out, teleform::DirectoryEntry(name, telephone));
}

YealinkIPPhoneDirectory::YealinkIPPhoneDirectory(const char* theTitle, int theMaxItems)
    : IPPhoneDirectoryXML(theTitle, theMaxItems) {}

YealinkIPPhoneDirectory::~YealinkIPPhoneDirectory() {
  teleform::ObjectPool::Clear<YealinkIPPhoneDirectoryEntry>(entries);
}

bool YealinkIPPhoneDirectory::AppendEntry(const std::string& name, const std::string& telephone) {
  if (name.empty() || telephone.empty()) return false;
  teleform::ObjectPool::Append<YealinkIPPhoneDirectoryEntry>(entries, name, telephone);
  return true;
}

void YealinkIPPhoneDirectory::SetPreviousURI(const std::string& /*uri*/) {}

void YealinkIPPhoneDirectory::SetNextURI(const std::string& /*uri*/) {}

void YealinkIPPhoneDirectory::Render(std::string& out) {
  using namespace teleform;
  AppendDirectory<YealinkIPPhoneDirectoryEntry>(
      out,
      Pieces(Line("<YealinkIPPhoneDirectory>"), Line("<Title>", title, "</Title>")),
      entries,
      DirectoryEntry,
      Pieces(ForEach(softKeys, SoftKeyItem), Line("</YealinkIPPhoneDirectory>")));
}
