// Turns what the benchmarks measured into the tables of docs/performance.md and the data of its
// chart.
//
// Usage: benchmark_report RESULTS.json PAGE.md CHART.dat
//
// The page keeps its text; what stands between the two marks is replaced. Only medians count, and
// only ratios within the one run.
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

class Results {
 public:
  explicit Results(const std::string& path) {
    std::ifstream file(path);
    const auto results = nlohmann::json::parse(file);
    for (const auto& run : results.at("benchmarks")) {
      if (run.value("aggregate_name", "") != "median") continue;
      if (run.at("time_unit") != "ns") throw std::runtime_error(path + ": not in nanoseconds");
      medians[run.at("run_name")] = run;
    }
  }
  const nlohmann::json& At(const std::string& name) const {
    const auto found = medians.find(name);
    if (found == medians.end()) throw std::runtime_error("not measured: " + name);
    return found->second;
  }
  double Nanoseconds(const std::string& name) const { return At(name).at("real_time"); }
  double Ratio(const std::string& a, const std::string& b) const {
    return Nanoseconds(a) / Nanoseconds(b);
  }

 private:
  std::map<std::string, nlohmann::json> medians;
};

std::string Rounded(double number) {
  std::ostringstream text;
  text.precision(number < 10 ? 2 : 0);
  text << std::fixed << number;
  return text.str();
}

const std::vector<std::string> kWork = {"directory 0",    "directory 10", "directory 32",
                                        "directory 1000", "menu",         "status",
                                        "text screen"};
const std::vector<std::string> kPeers = {"chain of +=", "ostringstream", "{fmt}",   "pugixml",
                                         "tinyxml2",    "libxml2",       "mustache"};

const std::string kRendering = "libteleform";
const std::string kWholeJob = "libteleform, whole job";

void AppendRow(std::string& table, const std::string& first,
               const std::vector<std::string>& cells) {
  table += "| " + first;
  for (const auto& cell : cells) table += " | " + cell;
  table += " |\n";
}

void AppendHead(std::string& table, const std::string& first,
                const std::vector<std::string>& cells) {
  AppendRow(table, first, cells);
  table += "|---";
  for (std::size_t i = 0; i < cells.size(); ++i) table += "|---:";
  table += "|\n";
}

// How long the peers take, as multiples of the time of one implementation of ours.
std::string Comparison(const Results& results, const std::string& string,
                       const std::string& implementation, const std::string& label) {
  std::string table;
  AppendHead(table, "", kWork);
  const auto row = [&](const std::string& first, auto cellOf) {
    std::vector<std::string> cells;
    cells.reserve(kWork.size());
    for (const auto& work : kWork) cells.push_back(cellOf(work + "/" + string + "/"));
    AppendRow(table, first, cells);
  };
  row(label + ", ns",
      [&](const std::string& work) { return Rounded(results.Nanoseconds(work + implementation)); });
  if (implementation == kRendering) {
    row(label + " / limit", [&](const std::string& work) {
      return Rounded(results.Ratio(work + implementation, work + "limit"));
    });
  }
  for (const auto& peer : kPeers) {
    row(peer + " / " + label, [&](const std::string& work) {
      return Rounded(results.Ratio(work + peer, work + implementation));
    });
  }
  return table;
}

std::string Escaped(const Results& results) {
  const std::vector<std::string> peers = {"chain of +=", "pugixml", "tinyxml2", "libxml2"};
  std::vector<std::string> head = {"whole job, ns"};
  for (const auto& peer : peers) head.push_back(peer + " / whole job");
  std::string table;
  AppendHead(table, "escaped", head);
  for (const std::string work : {"directory 32", "menu"}) {
    for (const auto& [string, label] :
         {std::pair{"fresh", "fresh string"}, {"reused", "string used again"}}) {
      const std::string prefix = "escaped " + work + "/" + string + "/";
      std::vector<std::string> cells = {Rounded(results.Nanoseconds(prefix + kWholeJob))};
      for (const auto& peer : peers) {
        cells.push_back(Rounded(results.Ratio(prefix + peer, prefix + kWholeJob)));
      }
      AppendRow(table, work + ", " + label, cells);
    }
  }
  return table;
}

std::string Sorting(const Results& results) {
  std::string table;
  AppendHead(table, "names", {"libteleform, µs", "stable_sort / libteleform"});
  for (const std::string names : {"32", "1000", "100000"}) {
    const std::string work = "sort " + names + "/";
    // The name of a run bears how it was timed and how often.
    const std::string suffix =
        std::string("/iterations:") + (names == "100000" ? "3" : "50") + "/manual_time";
    AppendRow(
        table, names,
        {Rounded(results.Nanoseconds(work + "libteleform" + suffix) / 1000),
         Rounded(results.Ratio(work + "stable_sort" + suffix, work + "libteleform" + suffix))});
  }
  return table;
}

std::string Growth(const Results& results) {
  std::string table;
  AppendHead(table, "entries", {"ns per entry, whole job", "bytes of memory per entry"});
  for (const std::string entries : {"10", "100", "1000", "10000", "100000", "1000000"}) {
    const std::string run = "growth/entries " + entries;
    AppendRow(table, entries,
              {Rounded(results.Nanoseconds(run) / std::stod(entries)),
               Rounded(results.At(run).at("bytes_per_entry"))});
  }
  table += "\n";
  AppendHead(table, "documents in one string", {"ns per document"});
  for (const std::string documents : {"10", "100", "1000", "10000"}) {
    AppendRow(
        table, documents,
        {Rounded(results.Nanoseconds("growth/documents " + documents) / std::stod(documents))});
  }
  const auto gain = [&](const std::string& work) {
    const std::string threads = "threads/" + work + "/real_time/threads:";
    return Rounded(results.Ratio(threads + "1", threads + "2"));
  };
  table += "\nTwo threads render " + gain("render") + " times as much as one, and do " +
           gain("whole job") + " times as many whole jobs.\n";
  return table;
}

std::string Screens(const Results& results) {
  std::string table;
  AppendHead(table, "directory of 20", {"ComposeList, ns", "ComposeList / by hand"});
  for (const std::string maker : {"Aastra", "Cisco", "Polycom", "Snom", "Yealink"}) {
    const std::string compose = "screens/" + maker + "/ComposeList";
    AppendRow(table, maker,
              {Rounded(results.Nanoseconds(compose)),
               Rounded(results.Ratio(compose, "screens/" + maker + "/by hand"))});
  }
  return table;
}

std::string Escaping(const Results& results) {
  std::string table;
  AppendHead(table, "text", {"EscapeXML, ns", "EscapeXML / copy"});
  for (const std::string text : {"name of 12 bytes", "name of 20 bytes", "name in UTF-8",
                                 "100 bytes", "1000 bytes", "10000 bytes"}) {
    const std::string escape = "escape/" + text + "/EscapeXML";
    AppendRow(table, text,
              {Rounded(results.Nanoseconds(escape)),
               Rounded(results.Ratio(escape, "escape/" + text + "/copy"))});
  }
  return table;
}

const std::string kBegin = "<!-- measured: begin -->\n";
const std::string kEnd = "<!-- measured: end -->\n";

void ReplaceMeasured(const std::string& path, const std::string& tables) {
  std::ifstream in(path);
  std::string page((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  const auto begin = page.find(kBegin);
  const auto end = page.find(kEnd);
  if (begin == page.npos || end == page.npos) throw std::runtime_error(path + ": no marks");
  page.replace(begin + kBegin.size(), end - begin - kBegin.size(), "\n" + tables + "\n");
  std::ofstream out(path);
  out << page;
  if (!out.flush()) throw std::runtime_error(path + ": can't be written");
}

void WriteChart(const std::string& path, const Results& results) {
  const std::vector<std::pair<std::string, std::string>> bars = {
      {"limit", "limit of a rendering"},
      {kRendering, "libteleform, rendering alone"},
      {kWholeJob, "libteleform, whole job"},
      {"chain of +=", "chain of +="},
      {"ostringstream", "ostringstream"},
      {"{fmt}", "{fmt}"},
      {"tinyxml2", "tinyxml2"},
      {"pugixml", "pugixml"},
      {"mustache", "mustache"},
      {"libxml2", "libxml2"}};
  std::ofstream out(path);
  for (const auto& [name, label] : bars) {
    out << '"' << label << "\"";
    for (const std::string work : {"directory 32", "menu", "text screen"}) {
      const std::string prefix = work + "/fresh/";
      out << "\t" << results.Ratio(prefix + name, prefix + kWholeJob);
    }
    out << "\n";
  }
  if (!out.flush()) throw std::runtime_error(path + ": can't be written");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::cerr << "usage: benchmark_report RESULTS.json PAGE.md CHART.dat\n";
    return 2;
  }
  try {
    const Results results(argv[1]);
    const std::string tables = "The whole job, into a fresh string:\n\n" +
                               Comparison(results, "fresh", kWholeJob, "whole job") +
                               "\nThe whole job, into a string that is used again:\n\n" +
                               Comparison(results, "reused", kWholeJob, "whole job") +
                               "\nThe whole job with escaping:\n\n" + Escaped(results) +
                               "\nA rendering alone, into a fresh string:\n\n" +
                               Comparison(results, "fresh", kRendering, "rendering") +
                               "\nA rendering alone, into a string that is used again:\n\n" +
                               Comparison(results, "reused", kRendering, "rendering") +
                               "\nSorting:\n\n" + Sorting(results) + "\nGrowth:\n\n" +
                               Growth(results) + "\nScreens:\n\n" + Screens(results) +
                               "\nTexts in which nothing is to be escaped:\n\n" + Escaping(results);
    ReplaceMeasured(argv[2], tables);
    WriteChart(argv[3], results);
    std::cout << tables;
  } catch (const std::exception& error) {
    std::cerr << "benchmark_report: " << error.what() << "\n";
    return 1;
  }
}
