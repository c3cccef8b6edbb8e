/// @file
/// Files that are part of the program.
#pragma once

namespace phonebook {

extern const char* const kPreviewPage;
extern const char* const kPreviewStyle;
extern const char* const kPreviewScript;
extern const char* const kSampleContacts;

}  // namespace phonebook
