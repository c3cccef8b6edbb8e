// Measures what screens cost: composing a directory against filling the same document by hand, and
// escaping texts in which nothing is to be escaped against copying them.
#include "screens.h"

#include <benchmark/benchmark.h>
#include <teleform/screens/compose.h>
#include <teleform/screens/escape.h>
#include <teleform/teleform.h>

#include <cstdlib>
#include <iostream>
#include <utility>

#include "contents.h"

namespace {

using teleform::screens::EscapeXML;
using teleform::screens::List;
using teleform::screens::Maker;

List MakeList() {
  const Directory contents;
  List list{contents.title, {}, {}, contents.previous, contents.next};
  for (const auto& person : MakePeople(20)) list.people.push_back({person.name, person.telephone});
  return list;
}

void Fill(IPPhoneDirectoryXML& document, const List& list) {
  for (const auto& person : list.people) {
    document.AppendEntry(EscapeXML(person.name), EscapeXML(person.telephone));
  }
}

template <typename Document>
void WriteLinked(const List& list, std::string& out) {
  Document document(EscapeXML(list.title).c_str(), static_cast<int>(list.people.size()));
  Fill(document, list);
  document.SetPreviousURI(EscapeXML(list.previous));
  document.SetNextURI(EscapeXML(list.next));
  document.Render(out);
}

template <typename Document, auto left, auto right>
void WriteWithKeys(const List& list, std::string& out) {
  Document document(EscapeXML(list.title).c_str(), static_cast<int>(list.people.size()));
  Fill(document, list);
  document.AddSoftKey(left, EscapeXML(list.previous).c_str());
  document.AddSoftKey(right, EscapeXML(list.next).c_str());
  document.Render(out);
}

void WriteHTML(const List& list, std::string& out) {
  std::string links;
  const auto link = [&links](const std::string& uri, std::string_view text) {
    links += "<a href=\"" + EscapeXML(uri) + "\">" + EscapeXML(text) + "</a><br/>\n";
  };
  for (const auto& person : list.people) {
    link("tel:" + teleform::screens::PercentEncode(person.telephone, "+*:@"), person.name);
  }
  for (const auto& [uri, text] : {std::pair{list.previous, "Previous"}, {list.next, "Next"}}) {
    link(uri, text);
  }
  PolycomIPPhoneTextScreen document(EscapeXML(list.title));
  document.SetText(links);
  document.Render(out);
}

using Writer = void (*)(const List&, std::string&);

Writer WriterByHand(Maker maker) {
  switch (maker) {
    case Maker::kAastra:
      return WriteLinked<AastraIPPhoneDirectory>;
    case Maker::kCisco:
      return WriteLinked<CiscoIPPhoneDirectory>;
    case Maker::kPolycom:
      return WriteHTML;
    case Maker::kSnom:
      return WriteWithKeys<SnomIPPhoneDirectory, SNOM_SK_LEFT, SNOM_SK_RIGHT>;
    case Maker::kYealink:
      return WriteWithKeys<YealinkIPPhoneDirectory, YEALINK_SK_LEFT, YEALINK_SK_RIGHT>;
  }
  return nullptr;
}

template <typename Write>
void MeasureWriting(benchmark::State& state, const Write& write) {
  for (auto _ : state) {
    std::string fresh;
    write(fresh);
    benchmark::DoNotOptimize(fresh.data());
  }
}

template <typename Make>
void MeasureMaking(benchmark::State& state, const std::string& text, Make make) {
  std::string_view view = text;
  for (auto _ : state) {
    benchmark::DoNotOptimize(view);
    const std::string made = make(view);
    benchmark::DoNotOptimize(made.data());
  }
}

void RegisterEscaping(const std::string& name, const std::string& text) {
  const auto add = [&](const char* implementation, auto make) {
    benchmark::RegisterBenchmark(
        ("escape/" + name + "/" + implementation).c_str(),
        [text, make](benchmark::State& state) { MeasureMaking(state, text, make); });
  };
  if (EscapeXML(text) != text) {
    std::cerr << "EscapeXML changes a text that has nothing to escape: " << text << "\n";
    std::exit(1);
  }
  add("copy", [](std::string_view from) { return std::string(from); });
  add("EscapeXML", [](std::string_view from) { return EscapeXML(from); });
}

}  // namespace

void RegisterScreens() {
  const List list = MakeList();
  for (const auto& facts : teleform::screens::AllMakers()) {
    const auto compose = [list, maker = facts.maker](std::string& out) {
      ComposeList(maker, list)->Render(out);
    };
    const auto fill = [list, write = WriterByHand(facts.maker)](std::string& out) {
      write(list, out);
    };
    std::string composed, filled;
    compose(composed);
    fill(filled);
    if (composed != filled) {
      std::cerr << facts.name << " by hand is another directory:\n" << filled << composed;
      std::exit(1);
    }
    const auto add = [&](const char* implementation, const auto& write) {
      benchmark::RegisterBenchmark(
          ("screens/" + std::string(facts.name) + "/" + implementation).c_str(),
          [write](benchmark::State& state) { MeasureWriting(state, write); });
    };
    add("ComposeList", compose);
    add("by hand", fill);
  }
  RegisterEscaping("name of 12 bytes", "Becker, Jana");
  RegisterEscaping("name of 20 bytes", "Zimmermann, Annabell");
  RegisterEscaping("name in UTF-8", "Müller, Zoë");
  for (const std::size_t size : {100UL, 1000UL, 10000UL}) {
    RegisterEscaping(std::to_string(size) + " bytes", std::string(size, 'a'));
  }
}
