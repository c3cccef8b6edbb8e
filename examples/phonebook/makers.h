/// @file
/// The makers, and which class a document of each kind has with each of them.
#pragma once

#include <teleform/teleform.h>

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace phonebook {

enum class Maker { kAastra, kCisco, kPolycom, kSnom, kYealink };

/// What the phone book knows of a maker.
struct MakerFacts {
  Maker maker;
  std::string_view name;
  std::string_view path;   ///< The first part of the paths of the maker's pages.
  int pageSize;            ///< How many items its phones show well on one page.
  bool hasPageAttributes;  ///< Whether its directory itself tells the pages before and after.
};

/// All makers, by name, which is the order of the enumeration.
const std::array<MakerFacts, 5>& AllMakers();

const MakerFacts& FactsOf(Maker maker);

/// The maker whose pages begin with the path `path`.
std::optional<Maker> MakerByPath(std::string_view path);

/// The maker of a phone that calls itself `userAgent`.
std::optional<Maker> MakerByUserAgent(std::string_view userAgent);

/// @name One factory a kind
/// Each returns null for a maker that has no such document, or none that serves here. Titles and
/// URIs must be fit for XML. Up to `maxItems` items are accepted.
/// @{
std::unique_ptr<IPPhoneTextScreenXML> MakeTextScreen(Maker maker, const std::string& title);
std::unique_ptr<IPPhoneMenuXML> MakeMenu(Maker maker, const std::string& title, int maxItems);
std::unique_ptr<IPPhoneDirectoryXML> MakeDirectory(Maker maker, const std::string& title,
                                                   int maxItems);
std::unique_ptr<IPPhoneInputXML> MakeInput(Maker maker, const std::string& title);
std::unique_ptr<IPPhoneExecuteXML> MakeExecute(Maker maker, const std::string& uri);
std::unique_ptr<IPPhoneStatusXML> MakeStatus(Maker maker);
/// @}

/// What a soft key is for; each maker has a place or a name for it.
enum class Key { kSelect, kDial, kSubmit, kPrevious, kNext, kSearch, kHome, kExit };

/// What to call the key where it has no name of its own.
std::string LabelOf(Key key);

/// Whether a document can hold soft keys at all.
bool HasSoftKeys(IPPhoneXML& document);

/// Gives a document a soft key.
/// @param uri what the key loads, fit for XML; empty for what the phone does by itself.
/// @return false, and the document is unchanged, when it has no such key.
bool AddSoftKey(IPPhoneXML& document, Key key, const std::string& uri);

}  // namespace phonebook
