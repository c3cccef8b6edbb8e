// Who takes part. A contestant gets contents to render and returns what a caller would run for each
// request: it appends the document to a string.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "contents.h"

using Renderer = std::function<void(std::string&)>;

struct Contestant {
  const char* name;
  // Whether it can write blanks around the equals signs of attributes, as Aastra phones have them.
  bool writesBlanks;
  Renderer (*directory)(const Directory&);
  Renderer (*menu)(const Menu&);
  Renderer (*status)(const Status&);
  Renderer (*screen)(const Screen&);
};

// A contestant whose function `Write(contents, out)` does everything at each rendering.
template <auto Write, typename Contents>
Renderer RenderWith(const Contents& contents) {
  return [&contents](std::string& out) { Write(contents, out); };
}

extern const Contestant kTeleform;
extern const Contestant kTeleformWholeJob;  // construct, fill, render, destroy
extern const Contestant kLimit;
extern const std::vector<Contestant> kStringWriters;
extern const std::vector<Contestant> kXmlLibraries;
extern const Contestant kTemplateEngine;
