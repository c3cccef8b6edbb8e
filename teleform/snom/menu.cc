#include <teleform/core/elements.h>
#include <teleform/core/object_pool.h>
#include <teleform/snom/menu.h>

SnomIPPhoneMenuItem::SnomIPPhoneMenuItem(const std::string& thePrompt, const std::string& uri)
    : prompt(thePrompt), URI(uri) {}

SnomIPPhoneMenuItem::~SnomIPPhoneMenuItem() = default;

void SnomIPPhoneMenuItem::Render(std::string& out) {
  teleform::Append(out, teleform::DirectoryEntry(prompt, URI));
}

SnomIPPhoneMenu::SnomIPPhoneMenu(const char* theTitle, int theMaxItems)
    : IPPhoneMenuXML(theTitle, theMaxItems) {}

SnomIPPhoneMenu::~SnomIPPhoneMenu() { teleform::ObjectPool::Clear<SnomIPPhoneMenuItem>(items); }

bool SnomIPPhoneMenu::AppendItem(const std::string& prompt, const std::string& uri) {
  if (prompt.empty() || uri.empty()) return false;
  teleform::ObjectPool::Append<SnomIPPhoneMenuItem>(items, prompt, uri);
  return true;
}

void SnomIPPhoneMenu::SetPreviousURI(const std::string& /*uri*/) {}

void SnomIPPhoneMenu::SetNextURI(const std::string& /*uri*/) {}

void SnomIPPhoneMenu::Render(std::string& out) {
  using namespace teleform;
  Append(out,
         Line("<SnomIPPhoneDirectory>"),
         Line("<Title>", title, "</Title>"),
         MenuItems(items, DirectoryEntry),
         ForEach(softKeys, SoftKeyItem),
         Line("</SnomIPPhoneDirectory>"));
}
