/// @file
/// Files that are compiled into the program.
#pragma once

#include <string_view>
#include <vector>

namespace phonebook {

/// A file that browsers load.
struct Asset {
  const char* path;  ///< Of its URL.
  const char* type;  ///< The Content-Type.
  const char* content;
};

/// A catalogue of gettext in its binary format.
struct CatalogueAsset {
  std::string_view language;  ///< Such as "de".
  std::string_view content;
};

/// The catalogues of all languages but English, as CMakeLists.txt lists them.
extern const std::vector<CatalogueAsset> kCatalogues;

/// The files of the preview, as CMakeLists.txt lists them.
extern const std::vector<Asset> kPreviewAssets;

extern const char* const kSampleContacts;

}  // namespace phonebook
