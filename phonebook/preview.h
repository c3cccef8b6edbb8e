/// @file
/// The preview: a page that shows the documents in a browser as the phones would.
#pragma once

#include <map>
#include <string>

#include "phonebook/http_server.h"

namespace phonebook {

/// Returns the responses of the preview by the paths of their URLs.
std::map<std::string, Response> MakePreview();

}  // namespace phonebook
