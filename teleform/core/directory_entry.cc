#include <teleform/core/directory_entry.h>

#include <algorithm>
#include <string_view>

IPPhoneDirectoryEntry::IPPhoneDirectoryEntry(const std::string& theName,
                                             const std::string& theTelephone)
    : name(theName), telephone(theTelephone) {}

IPPhoneDirectoryEntry::IPPhoneDirectoryEntry(const IPPhoneDirectoryEntry& other) = default;

IPPhoneDirectoryEntry::~IPPhoneDirectoryEntry() = default;

void IPPhoneDirectoryEntry::Render(std::string& /*out*/) {}

bool IPPhoneDirectoryEntry::operator<(const IPPhoneDirectoryEntry& other) {
  return name < other.name;
}

bool IPPhoneDirectoryEntry::operator<=(const IPPhoneDirectoryEntry& other) {
  return name <= other.name;
}

bool IPPhoneDirectoryEntry::operator>(const IPPhoneDirectoryEntry& other) {
  return name > other.name;
}

bool IPPhoneDirectoryEntry::operator>=(const IPPhoneDirectoryEntry& other) {
  return name >= other.name;
}

std::ostream& operator<<(std::ostream& os, const IPPhoneDirectoryEntry& entry) {
  const std::string& name = entry.GetName();
  return os.write(name.data(), static_cast<std::streamsize>(name.size()));
}

bool compare_case(IPPhoneDirectoryEntry* a, IPPhoneDirectoryEntry* b) {
  const std::string_view first = a->GetName();
  const std::string_view second = b->GetName();
  const std::size_t common = std::min(first.size(), second.size());
  return first.substr(0, common) < second.substr(0, common);
}
