// Prints every document that the library writes, each built from the same contacts.
//
// Usage: gallery CONTACTS [DOCUMENT]
//
// CONTACTS is a file of contacts in UTF-8, one a line: name, telephone and department, with a tab
// between them. Empty lines and lines that begin with # are skipped. DOCUMENT is the name of a
// class, to see that document alone.
#include <teleform/screens/escape.h>
#include <teleform/teleform.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <functional>
#include <iostream>
#include <memory>
#include <regex>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace {

using teleform::screens::EscapeXML;

struct Contact {
  std::string name;
  std::string telephone;
  std::string department;
};
using Contacts = std::vector<Contact>;

Contacts ReadContacts(const std::string& path) {
  static const std::regex fields("([^\t]+)\t([^\t]+)\t([^\t]*)");
  Contacts contacts;
  std::ifstream file(path);
  std::string line;
  for (int number = 1; std::getline(file, line); ++number) {
    if (line.empty() || line.front() == '#') continue;
    std::smatch match;
    if (!std::regex_match(line, match, fields)) {
      throw std::runtime_error(path + ":" + std::to_string(number) +
                               ": expected a name, a telephone and a department with tabs between");
    }
    contacts.push_back({match[1], match[2], match[3]});
  }
  if (!file.eof()) throw std::runtime_error(path + ": " + std::strerror(errno));
  if (contacts.empty()) throw std::runtime_error(path + ": no contacts in it");
  return contacts;
}

const std::string kServer = "http://phonebook.example/";

// What a phone dials: the number without what makes it readable.
std::string DialString(const std::string& telephone) {
  return std::regex_replace(telephone, std::regex("[ ./()-]"), "");
}

void AppendCard(const Contact& contact, IPPhoneTextScreenXML& screen) {
  screen.SetText(EscapeXML(contact.name) + ", " + EscapeXML(contact.department) + ": " +
                 EscapeXML(contact.telephone));
}

void AppendDepartments(const Contacts& contacts, IPPhoneMenuXML& menu) {
  std::vector<std::string> seen;
  for (const auto& contact : contacts) {
    const std::string& department = contact.department;
    if (std::find(seen.begin(), seen.end(), department) != seen.end()) continue;
    seen.push_back(department);
    menu.AppendItem(EscapeXML(department), kServer + "department/" + std::to_string(seen.size()));
  }
}

void AppendContacts(const Contacts& contacts, IPPhoneDirectoryXML& directory) {
  for (const auto& contact : contacts) {
    if (!directory.AppendEntry(EscapeXML(contact.name), EscapeXML(contact.telephone))) break;
  }
  directory.SortDirectoryItems();
  directory.SetPreviousURI(kServer + "people?page=1");
  directory.SetNextURI(kServer + "people?page=3");
}

void AskForName(IPPhoneInputXML& form) { form.SetParams("Name:", kServer + "find", "name", ""); }

struct Sample {
  const char* name;
  std::function<std::unique_ptr<IPPhoneXML>(const Contacts&)> make;
};

const std::vector<Sample> kSamples = {
    {"AastraIPPhoneTextScreen",
     [](const Contacts& contacts) {
       auto screen = std::make_unique<AastraIPPhoneTextScreen>("Contact");
       AppendCard(contacts.front(), *screen);
       screen->SetAttributes(AttrDestroyOnExit);
       screen->AddSoftKey(1, "Dial", ("tel:" + DialString(contacts.front().telephone)).c_str());
       screen->AddSoftKey(6, "Exit", AASTRA_SK_EXIT);
       return screen;
     }},
    {"AastraIPPhoneMenu",
     [](const Contacts& contacts) {
       auto menu = std::make_unique<AastraIPPhoneMenu>("Departments", 15);
       AppendDepartments(contacts, *menu);
       menu->AddSoftKey(1, "Select", AASTRA_SK_SELECT);
       return menu;
     }},
    {"AastraIPPhoneDirectory",
     [](const Contacts& contacts) {
       auto directory = std::make_unique<AastraIPPhoneDirectory>("People", 15);
       AppendContacts(contacts, *directory);
       directory->AddSoftKey(1, "Dial", AASTRA_SK_DIAL);
       return directory;
     }},
    {"AastraIPPhoneInput",
     [](const Contacts&) {
       auto form = std::make_unique<AastraIPPhoneInput>("Search", "string", false);
       AskForName(*form);
       form->AddSoftKey(5, "Done", AASTRA_SK_SUBMIT);
       return form;
     }},
    {"AastraIPPhoneExecute",
     [](const Contacts& contacts) {
       return std::make_unique<AastraIPPhoneExecute>("Dial:" +
                                                     DialString(contacts.front().telephone));
     }},
    {"AastraIPPhoneStatus",
     [](const Contacts& contacts) {
       auto status = std::make_unique<AastraIPPhoneStatus>();
       status->SetMessage("phonebook", "Missed: " + EscapeXML(contacts.front().name), 1,
                          IPPhoneStatusXML::MsgTypeAlert, 10);
       status->SetAttributes(AttrBeep);
       return status;
     }},
    {"CiscoIPPhoneDirectory",
     [](const Contacts& contacts) {
       auto directory = std::make_unique<CiscoIPPhoneDirectory>("People", 32);
       AppendContacts(contacts, *directory);
       return directory;
     }},
    {"PolycomIPPhoneTextScreen",
     [](const Contacts& contacts) {
       auto screen = std::make_unique<PolycomIPPhoneTextScreen>("Contact");
       AppendCard(contacts.front(), *screen);
       return screen;
     }},
    {"SnomIPPhoneTextScreen",
     [](const Contacts& contacts) {
       auto screen = std::make_unique<SnomIPPhoneTextScreen>("Contact");
       AppendCard(contacts.front(), *screen);
       screen->AddSoftKey(SNOM_SK_ENTER, ("tel:" + DialString(contacts.front().telephone)).c_str());
       return screen;
     }},
    {"SnomIPPhoneMenu",
     [](const Contacts& contacts) {
       auto menu = std::make_unique<SnomIPPhoneMenu>("Departments", 0);
       AppendDepartments(contacts, *menu);
       return menu;
     }},
    {"SnomIPPhoneDirectory",
     [](const Contacts& contacts) {
       auto directory = std::make_unique<SnomIPPhoneDirectory>("People", 0);
       AppendContacts(contacts, *directory);
       directory->AddSoftKey(SNOM_SK_F_MINIBROWSER_SEARCH, (kServer + "find").c_str());
       return directory;
     }},
    {"SnomIPPhoneInput",
     [](const Contacts&) {
       auto form = std::make_unique<SnomIPPhoneInput>("Search", "a");
       AskForName(*form);
       return form;
     }},
    {"YealinkIPPhoneTextScreen",
     [](const Contacts& contacts) {
       auto screen = std::make_unique<YealinkIPPhoneTextScreen>("Contact");
       AppendCard(contacts.front(), *screen);
       return screen;
     }},
    {"YealinkIPPhoneMenu",
     [](const Contacts& contacts) {
       auto menu = std::make_unique<YealinkIPPhoneMenu>("Departments", 0);
       AppendDepartments(contacts, *menu);
       return menu;
     }},
    {"YealinkIPPhoneDirectory",
     [](const Contacts& contacts) {
       auto directory = std::make_unique<YealinkIPPhoneDirectory>("People", 0);
       AppendContacts(contacts, *directory);
       directory->AddSoftKey(YEALINK_SK_F_MINIBROWSER_SEARCH, (kServer + "find").c_str());
       return directory;
     }},
};

void Show(const Sample& sample, const Contacts& contacts) {
  const auto document = sample.make(contacts);
  std::string text;
  document->Render(text);
  std::cout << "== " << sample.name << ", " << document->GetContentType() << " ==\n"
            << text << "\n";
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2 || argc > 3) {
    std::cerr << "usage: gallery CONTACTS [DOCUMENT]\n";
    return 2;
  }
  std::vector<Sample> chosen = kSamples;
  if (argc == 3) {
    chosen.erase(std::remove_if(chosen.begin(), chosen.end(),
                                [&](const Sample& sample) {
                                  return std::string_view(sample.name) != argv[2];
                                }),
                 chosen.end());
    if (chosen.empty()) {
      std::cerr << "gallery: there is no document " << argv[2] << "; the documents are\n";
      for (const auto& sample : kSamples) std::cerr << "  " << sample.name << "\n";
      return 2;
    }
  }
  try {
    const Contacts contacts = ReadContacts(argv[1]);
    for (const auto& sample : chosen) Show(sample, contacts);
  } catch (const std::exception& error) {
    std::cerr << "gallery: " << error.what() << "\n";
    return 1;
  }
  std::cout.flush();
  if (!std::cout) {
    std::cerr << "gallery: the output can't be written\n";
    return 1;
  }
  return 0;
}
