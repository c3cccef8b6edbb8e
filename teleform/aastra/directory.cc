#include <teleform/aastra/directory.h>
#include <teleform/aastra/elements.h>
#include <teleform/core/object_pool.h>

#include <cstddef>

AastraIPPhoneDirectoryEntry::AastraIPPhoneDirectoryEntry(const std::string& theName,
                                                         const std::string& theTelephone)
    : IPPhoneDirectoryEntry(theName, theTelephone) {}

AastraIPPhoneDirectoryEntry::~AastraIPPhoneDirectoryEntry() = default;

void AastraIPPhoneDirectoryEntry::Render(std::string& out) {
  teleform::Append(out, teleform::AastraMenuItem(name, telephone));
}

AastraIPPhoneDirectory::AastraIPPhoneDirectory(const char* theTitle, int theMaxItems)
    : IPPhoneDirectoryXML(theTitle, theMaxItems) {}

AastraIPPhoneDirectory::~AastraIPPhoneDirectory() {
  teleform::ObjectPool::Clear<AastraIPPhoneDirectoryEntry>(entries);
}

bool AastraIPPhoneDirectory::AppendEntry(const std::string& name, const std::string& telephone) {
  if (static_cast<std::ptrdiff_t>(entries.size()) >= maxItems) return false;
  if (name.empty() || telephone.empty()) return false;
  teleform::ObjectPool::Append<AastraIPPhoneDirectoryEntry>(entries, name, telephone);
  return true;
}

void AastraIPPhoneDirectory::SetPreviousURI(const std::string& uri) { previousURI = uri; }

void AastraIPPhoneDirectory::SetNextURI(const std::string& uri) { nextURI = uri; }

void AastraIPPhoneDirectory::Render(std::string& out) {
  using namespace teleform;
  AppendDirectory<AastraIPPhoneDirectoryEntry>(
      out,
      Pieces(Line("<AastraIPPhoneDirectory",
                  PageLinks(previousURI, nextURI),
                  AastraFlags(destroyOnExit, beep),
                  ">"),
             Line("<Title>", title, "</Title>")),
      entries,
      AastraMenuItem,
      Pieces(ForEach(softKeys, AastraSoftKeyItem), Line("</AastraIPPhoneDirectory>")));
}
