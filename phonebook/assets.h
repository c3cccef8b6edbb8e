/// @file
/// Files that are compiled into the program.
#pragma once

#include <vector>

namespace phonebook {

/// A file that browsers load.
struct Asset {
  const char* path;  ///< Of its URL.
  const char* type;  ///< The Content-Type.
  const char* content;
};

/// The files of the preview, as CMakeLists.txt lists them.
const std::vector<Asset>& PreviewAssets();

extern const char* const kSampleContacts;

}  // namespace phonebook
