// The implementations that are compared. Each gets contents to render and returns what a caller
// would run for each request: it appends the document to a string.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "contents.h"

using Renderer = std::function<void(std::string&)>;

struct Implementation {
  const char* name;
  // Whether it can write blanks around the equals signs of attributes, as Aastra phones have them.
  bool writesBlanks;
  Renderer (*directory)(const Directory&);
  Renderer (*menu)(const Menu&);
  // Null with escaping, which is measured with directories and menus.
  Renderer (*status)(const Status&);
  Renderer (*screen)(const Screen&);
};

// The text itself, where others escape it.
inline const std::string& AsIs(const std::string& text) { return text; }

// An implementation whose function `Write(contents, out)` does everything at each rendering.
template <auto Write, typename Contents>
Renderer RenderWith(const Contents& contents) {
  return [&contents](std::string& out) { Write(contents, out); };
}

extern const Implementation kTeleform;
extern const Implementation kTeleformWholeJob;  // construct, fill, render, destroy
extern const Implementation kTeleformEscaped;   // the whole job, each text through EscapeXML
extern const Implementation kLimit;
extern const std::vector<Implementation> kStringWriters;
extern const Implementation kChainEscaped;  // the first of them, each text through EscapeXML
extern const std::vector<Implementation> kXmlLibraries;
extern const Implementation kTemplateEngine;
