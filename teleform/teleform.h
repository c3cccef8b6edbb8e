/// @file
/// Every document of every maker.
///
///     CiscoIPPhoneDirectory directory("Colleagues", 32);
///     directory.AppendEntry("Ann", "1001");
///     std::string text;
///     directory.Render(text);  // to be sent as directory.GetContentType()
#pragma once

#include <teleform/aastra/directory.h>
#include <teleform/aastra/execute.h>
#include <teleform/aastra/input.h>
#include <teleform/aastra/menu.h>
#include <teleform/aastra/soft_keys.h>
#include <teleform/aastra/status.h>
#include <teleform/aastra/text_screen.h>
#include <teleform/cisco/directory.h>
#include <teleform/core/directory_entry.h>
#include <teleform/core/documents.h>
#include <teleform/core/number_to_string.h>
#include <teleform/polycom/text_screen.h>
#include <teleform/snom/directory.h>
#include <teleform/snom/input.h>
#include <teleform/snom/menu.h>
#include <teleform/snom/soft_keys.h>
#include <teleform/snom/text_screen.h>
#include <teleform/yealink/directory.h>
#include <teleform/yealink/menu.h>
#include <teleform/yealink/soft_keys.h>
#include <teleform/yealink/text_screen.h>
