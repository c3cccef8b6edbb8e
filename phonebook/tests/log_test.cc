// What is lost when nobody reads the log, and when one client fills it.
#include "phonebook/log.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

namespace phonebook {

namespace {

TEST(Log, CountsLinesThatNobodyReads) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  struct stat file = {};
  fstat(ends[1], &file);
  const std::string journal = std::to_string(file.st_dev) + ":" + std::to_string(file.st_ino);
  const int standardError = dup(STDERR_FILENO);
  dup2(ends[1], STDERR_FILENO);
  close(ends[1]);
  setenv("JOURNAL_STREAM", journal.c_str(), 1);
  StartLog();
  constexpr std::size_t kLines = 5000;
  const std::string text = "a\n\x1b" + std::string(2000, 'b');
  for (std::size_t i = 0; i < kLines; ++i) Log(spdlog::level::err, text);
  LogOmitted();
  std::size_t read = 0;
  std::size_t dropped = 0;
  std::FILE* const reader = fdopen(ends[0], "r");
  char line[2000];
  while (read + dropped < kLines && std::fgets(line, sizeof line, reader) != nullptr) {
    std::size_t count = 0;
    if (std::sscanf(line, "<4>%zu log lines were dropped\n", &count) == 1) {
      dropped += count;
    } else {
      ++read;
      const std::string found = line;
      EXPECT_EQ(found.substr(0, 7), "<3>a  b");
      EXPECT_EQ(found.substr(found.size() - 5), "b...\n");
      EXPECT_LE(found.size(), 1024U);
    }
  }
  EXPECT_EQ(read + dropped, kLines);
  EXPECT_GT(dropped, 0U);
  dup2(standardError, STDERR_FILENO);
  close(standardError);
  std::fclose(reader);
}

TEST(Log, LimitsLinesOfClients) {
  ClientLineLimit limit;
  const auto admitted = [&](const std::string& client, std::size_t lines) {
    std::size_t count = 0;
    for (std::size_t i = 0; i < lines; ++i) count += limit.Admit(client) ? 1 : 0;
    return count;
  };
  constexpr std::size_t kMost = ClientLineLimit::kMaxLines;
  using Exceeded = std::vector<std::pair<std::string, std::size_t>>;
  EXPECT_EQ(admitted("a", kMost + 7), kMost);
  EXPECT_EQ(admitted("b", kMost), kMost);
  EXPECT_EQ(limit.Reset(), (Exceeded{{"a", 7}}));
  EXPECT_EQ(admitted("a", 1), 1U);
  for (std::size_t i = 1; i < ClientLineLimit::kMaxClients; ++i) limit.Admit(std::to_string(i));
  EXPECT_EQ(admitted("c", kMost) + admitted("d", kMost), kMost);
  EXPECT_EQ(limit.Reset(), (Exceeded{{"other clients", kMost}}));
}

}  // namespace

}  // namespace phonebook
