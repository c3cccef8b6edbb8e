// Measures every implementation at every kind of work, after comparing what they write.
#include <benchmark/benchmark.h>
#include <malloc.h>
#include <teleform/teleform.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <deque>
#include <iostream>
#include <memory>
#include <random>

#include "implementations.h"
#include "screens.h"

namespace {

std::vector<Implementation> AllImplementations() {
  std::vector<Implementation> all = {kTeleform, kTeleformWholeJob, kLimit};
  all.insert(all.end(), kStringWriters.begin(), kStringWriters.end());
  all.insert(all.end(), kXmlLibraries.begin(), kXmlLibraries.end());
  all.push_back(kTemplateEngine);
  return all;
}

// With escaping, which XML libraries do by themselves.
std::vector<Implementation> EscapingImplementations() {
  std::vector<Implementation> all = {kTeleformEscaped, kChainEscaped};
  all.insert(all.end(), kXmlLibraries.begin(), kXmlLibraries.end());
  return all;
}

std::string WithoutBlanks(std::string text) {
  for (std::size_t at; (at = text.find(" = \"")) != text.npos;) text.replace(at, 3, "=");
  return text;
}

void RenderFresh(benchmark::State& state, const Renderer& render) {
  for (auto _ : state) {
    std::string fresh;
    render(fresh);
    benchmark::DoNotOptimize(fresh.data());
  }
}

void RenderReused(benchmark::State& state, const Renderer& render) {
  std::string reused;
  for (auto _ : state) {
    reused.clear();
    render(reused);
    benchmark::DoNotOptimize(reused.data());
  }
}

// Registers one kind of work, into a fresh and into a reused string. All write what the first
// implementation writes.
template <typename Contents>
void Register(const std::string& work, Renderer (*Implementation::*make)(const Contents&),
              const Contents& contents,
              const std::vector<Implementation>& implementations = AllImplementations()) {
  std::string expected;
  (implementations.front().*make)(contents)(expected);
  for (const auto& implementation : implementations) {
    const Renderer render = (implementation.*make)(contents);
    std::string out;
    render(out);
    if (out != (implementation.writesBlanks ? expected : WithoutBlanks(expected))) {
      std::cerr << implementation.name << " writes another " << work << ":\n" << out << "\n";
      std::exit(1);
    }
    benchmark::RegisterBenchmark((work + "/fresh/" + implementation.name).c_str(), RenderFresh,
                                 render);
    benchmark::RegisterBenchmark((work + "/reused/" + implementation.name).c_str(), RenderReused,
                                 render);
  }
}

void AddAmpersands(std::vector<Person>& people) {
  for (std::size_t i = 0; i < people.size(); i += 8) people[i].name += " & Co.";
}

// Nobody sorts the same order twice, and a processor that sees it twice guesses right: every sort
// gets names in an order of their own. A batch of sorts is timed at once.
template <typename Prepare, typename Sort>
void MeasureSorting(benchmark::State& state, std::size_t count, Prepare prepare, Sort sort) {
  std::vector<Person> people = MakePeople(count);
  std::mt19937 random(1);
  const std::size_t batch = std::max<std::size_t>(1, 2000 / count);
  for (auto _ : state) {
    std::vector<decltype(prepare(people))> prepared;
    for (std::size_t i = 0; i < batch; ++i) {
      std::shuffle(people.begin(), people.end(), random);
      prepared.push_back(prepare(people));
    }
    const auto begin = std::chrono::steady_clock::now();
    for (auto& one : prepared) sort(one);
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - begin;
    state.SetIterationTime(elapsed.count() / static_cast<double>(batch));
  }
}

void SortDirectory(benchmark::State& state, std::size_t count) {
  const auto prepare = [](const std::vector<Person>& people) {
    auto directory = std::make_unique<SnomIPPhoneDirectory>("", 0);
    for (const auto& person : people) directory->AppendEntry(person.name, person.telephone);
    return directory;
  };
  MeasureSorting(state, count, prepare, [](auto& directory) { directory->SortDirectoryItems(); });
}

void SortPointers(benchmark::State& state, std::size_t count) {
  struct Names {
    std::vector<std::string> names;
    std::vector<const std::string*> pointers;
  };
  const auto prepare = [](const std::vector<Person>& people) {
    auto names = std::make_unique<Names>();
    for (const auto& person : people) names->names.push_back(person.name);
    for (const auto& name : names->names) names->pointers.push_back(&name);
    return names;
  };
  MeasureSorting(state, count, prepare, [](auto& names) {
    std::stable_sort(names->pointers.begin(), names->pointers.end(),
                     [](const auto* a, const auto* b) { return *a < *b; });
  });
}

void RegisterSorting(std::size_t count) {
  const std::string work = "sort " + std::to_string(count) + "/";
  const int batches = count > 10000 ? 3 : 50;
  const auto add = [&](const char* implementation,
                       void (*measure)(benchmark::State&, std::size_t)) {
    benchmark::RegisterBenchmark((work + implementation).c_str(), measure, count)
        ->UseManualTime()
        ->Iterations(batches);
  };
  add("libteleform", SortDirectory);
  add("stable_sort", SortPointers);
}

// Time and memory for an entry, from a new directory to its text and to its end. The string is used
// again: what the kernel takes to hand out fresh pages for a text of 100 MB is not the library's.
void FillAndRender(benchmark::State& state, std::size_t count) {
  Directory contents;
  contents.people = MakePeople(count);
  std::string out;
  kTeleformWholeJob.directory(contents)(out);
  const auto fill = [&contents](CiscoIPPhoneDirectory& document) {
    for (const auto& person : contents.people) document.AppendEntry(person.name, person.telephone);
  };
  double memory = 0;
  {
    const auto before = mallinfo2();
    CiscoIPPhoneDirectory document("", 1 << 30);
    fill(document);
    const auto after = mallinfo2();
    memory = static_cast<double>(after.uordblks + after.hblkhd + out.size() - before.uordblks -
                                 before.hblkhd);
  }
  for (auto _ : state) {
    out.clear();
    CiscoIPPhoneDirectory document("", 1 << 30);
    fill(document);
    document.Render(out);
  }
  state.counters["bytes_per_entry"] = memory / static_cast<double>(count);
}

// Many documents in one string.
void AppendDocuments(benchmark::State& state, int count) {
  const Screen contents;
  const Renderer render = kTeleform.screen(contents);
  for (auto _ : state) {
    std::string out;
    for (int i = 0; i < count; ++i) render(out);
    benchmark::DoNotOptimize(out.data());
  }
}

// Each thread with documents and strings of its own; the whole job has the allocator in it.
void RenderOnThreads(benchmark::State& state, const Implementation& implementation,
                     const Directory& contents) {
  RenderReused(state, implementation.directory(contents));
}

}  // namespace

int main(int argc, char** argv) {
  std::deque<Directory> directories;  // they stay where they are
  for (const std::size_t entries : {0UL, 10UL, 32UL, 1000UL}) {
    directories.push_back({});
    directories.back().people = MakePeople(entries);
    Register("directory " + std::to_string(entries), &Implementation::directory,
             directories.back());
  }
  const Menu menu = MakeMenu(15);
  Register("menu", &Implementation::menu, menu);
  const Status status;
  Register("status", &Implementation::status, status);
  const Screen screen;
  Register("text screen", &Implementation::screen, screen);
  Directory escapedDirectory;
  escapedDirectory.people = MakePeople(32);
  AddAmpersands(escapedDirectory.people);
  Register("escaped directory 32", &Implementation::directory, escapedDirectory,
           EscapingImplementations());
  Menu escapedMenu = MakeMenu(15);
  AddAmpersands(escapedMenu.items);
  Register("escaped menu", &Implementation::menu, escapedMenu, EscapingImplementations());
  for (const std::size_t names : {32UL, 1000UL, 100000UL}) RegisterSorting(names);
  for (const std::size_t entries : {10UL, 100UL, 1000UL, 10000UL, 100000UL, 1000000UL}) {
    benchmark::RegisterBenchmark(("growth/entries " + std::to_string(entries)).c_str(),
                                 FillAndRender, entries);
  }
  for (const int documents : {10, 100, 1000, 10000}) {
    benchmark::RegisterBenchmark(("growth/documents " + std::to_string(documents)).c_str(),
                                 AppendDocuments, documents);
  }
  for (const int threads : {1, 2}) {
    const auto add = [&](const char* name, const Implementation& implementation) {
      benchmark::RegisterBenchmark(name, RenderOnThreads, implementation, directories[2])
          ->Threads(threads)
          ->UseRealTime();
    };
    add("threads/render", kTeleform);
    add("threads/whole job", kTeleformWholeJob);
  }
  RegisterScreens();

  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
}
