#include <teleform/core/elements.h>
#include <teleform/core/object_pool.h>
#include <teleform/yealink/menu.h>

YealinkIPPhoneMenuItem::YealinkIPPhoneMenuItem(const std::string& thePrompt, const std::string& uri)
    : prompt(thePrompt), URI(uri) {}

YealinkIPPhoneMenuItem::~YealinkIPPhoneMenuItem() = default;

void YealinkIPPhoneMenuItem::Render(std::string& out) {
  teleform::Append(out, teleform::DirectoryEntry(prompt, URI));
}

YealinkIPPhoneMenu::YealinkIPPhoneMenu(const char* theTitle, int theMaxItems)
    : IPPhoneMenuXML(theTitle, theMaxItems) {}

YealinkIPPhoneMenu::~YealinkIPPhoneMenu() {
  teleform::ObjectPool::Clear<YealinkIPPhoneMenuItem>(items);
}

bool YealinkIPPhoneMenu::AppendItem(const std::string& prompt, const std::string& uri) {
  if (prompt.empty() || uri.empty()) return false;
  teleform::ObjectPool::Append<YealinkIPPhoneMenuItem>(items, prompt, uri);
  return true;
}

void YealinkIPPhoneMenu::SetPreviousURI(const std::string& /*uri*/) {}

void YealinkIPPhoneMenu::SetNextURI(const std::string& /*uri*/) {}

void YealinkIPPhoneMenu::Render(std::string& out) {
  using namespace teleform;
  Append(out,
         Line("<YealinkIPPhoneDirectory>"),
         Line("<Title>", title, "</Title>"),
         MenuItems(items, DirectoryEntry),
         ForEach(softKeys, SoftKeyItem),
         Line("</YealinkIPPhoneDirectory>"));
}
