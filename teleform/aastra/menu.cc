#include <teleform/aastra/elements.h>
#include <teleform/aastra/menu.h>
#include <teleform/core/object_pool.h>

#include <cstddef>

AastraIPPhoneMenuItem::AastraIPPhoneMenuItem(const std::string& thePrompt, const std::string& uri)
    : prompt(thePrompt), URI(uri) {}

AastraIPPhoneMenuItem::~AastraIPPhoneMenuItem() = default;

void AastraIPPhoneMenuItem::Render(std::string& out) {
  teleform::Append(out, teleform::AastraMenuItem(prompt, URI));
}

AastraIPPhoneMenu::AastraIPPhoneMenu(const std::string& theTitle, int theMaxItems)
    : IPPhoneMenuXML(theTitle.c_str(), theMaxItems) {}

AastraIPPhoneMenu::~AastraIPPhoneMenu() {
  teleform::ObjectPool::Clear<AastraIPPhoneMenuItem>(items);
}

bool AastraIPPhoneMenu::AppendItem(const std::string& prompt, const std::string& uri) {
  if (static_cast<std::ptrdiff_t>(items.size()) >= maxItems) return false;
  if (prompt.empty() || uri.empty()) return false;
  teleform::ObjectPool::Append<AastraIPPhoneMenuItem>(items, prompt, uri);
  return true;
}

void AastraIPPhoneMenu::SetPreviousURI(const std::string& uri) { previousURI = uri; }

void AastraIPPhoneMenu::SetNextURI(const std::string& uri) { nextURI = uri; }

void AastraIPPhoneMenu::Render(std::string& out) {
  using namespace teleform;
  Append(out,
         Line("<AastraIPPhoneTextMenu", AastraFlags(destroyOnExit, beep), ">"),
         Line("<Title>", title, "</Title>"),
         MenuItems(items, AastraMenuItem),
         ForEach(softKeys, AastraSoftKeyItem),
         Line("</AastraIPPhoneTextMenu>"));
}
