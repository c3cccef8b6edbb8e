#include "phonebook/log.h"

#include <poll.h>
#include <spdlog/async_logger.h>
#include <spdlog/details/null_mutex.h>
#include <spdlog/details/thread_pool.h>
#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/base_sink.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <memory>
#include <thread>

#include "phonebook/text.h"

namespace phonebook {

namespace {

using Clock = std::chrono::steady_clock;
using spdlog::details::thread_pool;

// Whether stderr is the journal, which adds the time and takes the level as a prefix.
bool IsJournal() {
  const char* const stream = std::getenv("JOURNAL_STREAM");
  struct stat file = {};
  return stream != nullptr && fstat(STDERR_FILENO, &file) == 0 &&
         stream == std::to_string(file.st_dev) + ":" + std::to_string(file.st_ino);
}

// The level as the journal numbers it.
const char* JournalPrefix(spdlog::level::level_enum level) {
  return level == spdlog::level::err ? "<3>" : level == spdlog::level::warn ? "<4>" : "<6>";
}

// Writes lines to stderr, and drops one that stderr doesn't take in time.
class StderrSink : public spdlog::sinks::base_sink<spdlog::details::null_mutex> {
 public:
  StderrSink() {
    formatter_ =
        std::make_unique<spdlog::pattern_formatter>(isJournal ? "%v" : "%Y-%m-%d %T.%e %l: %v");
  }

  // The lines that were dropped up to now, here and by the queue.
  std::size_t Dropped() const { return dropped + (pool != nullptr ? pool->overrun_counter() : 0); }

  thread_pool* pool = nullptr;
  std::atomic<std::size_t> handled = 0;

 protected:
  // An empty line only reports what was dropped.
  void sink_it_(const spdlog::details::log_msg& message) override {
    ReportDropped();
    if (message.payload.size() > 0 && !WriteLine(message)) ++dropped;
    ++handled;
  }
  void flush_() override {}

 private:
  void ReportDropped() {
    const std::size_t count = Dropped() - reported;
    if (count == 0) return;
    const std::string text = std::to_string(count) + " log lines were dropped";
    if (WriteLine({"", spdlog::level::warn, text})) reported += count;
  }

  bool WriteLine(const spdlog::details::log_msg& message) {
    spdlog::memory_buf_t line;
    formatter_->format(message, line);
    std::string text(isPartial ? "\n" : "");
    if (isJournal) text += JournalPrefix(message.level);
    text.append(line.data(), line.size());
    return Write(text);
  }

  // stderr stays in blocking mode, which other programs may share: poll() tells whether a short
  // line fits.
  bool Write(std::string_view text) {
    constexpr int kTimeout = 100;  // milliseconds
    const std::size_t size = text.size();
    while (!text.empty()) {
      pollfd file{STDERR_FILENO, POLLOUT, 0};
      const ssize_t count =
          poll(&file, 1, kTimeout) > 0 ? write(STDERR_FILENO, text.data(), text.size()) : -1;
      if (count <= 0) break;
      text.remove_prefix(static_cast<std::size_t>(count));
    }
    if (text.size() < size) isPartial = !text.empty();
    return text.empty();
  }

  const bool isJournal = IsJournal();
  std::atomic<std::size_t> dropped = 0;
  std::size_t reported = 0;
  bool isPartial = false;  // the last line is
};

// Is never destroyed: at exit its thread may still be in a write.
struct AsyncLog {
  static constexpr std::size_t kMaxQueue = 1024;

  AsyncLog() { sink->pool = pool.get(); }
  void Add(spdlog::level::level_enum level, std::string_view text) {
    ++added;
    logger->log(level, spdlog::string_view_t(text.data(), text.size()));
  }

  const std::shared_ptr<StderrSink> sink = std::make_shared<StderrSink>();
  const std::shared_ptr<thread_pool> pool = std::make_shared<thread_pool>(kMaxQueue, 1);
  const std::shared_ptr<spdlog::async_logger> logger = std::make_shared<spdlog::async_logger>(
      "", sink, pool, spdlog::async_overflow_policy::overrun_oldest);
  std::atomic<std::size_t> added = 0;
  ClientLineLimit limit;
};

std::atomic<AsyncLog*> asyncLog = nullptr;

// The beginning of a line.
std::string Cleaned(std::string_view line) {
  constexpr int kMaxCharacters = 950;
  std::string text = TruncateToCharacters(line, kMaxCharacters);
  for (char& byte : text) {
    if ((byte >= 0 && byte < ' ') || byte == '\x7f') byte = ' ';
  }
  return text + (CountCharacters(line) > kMaxCharacters ? "..." : "");
}

}  // namespace

void StartLog() {
  if (asyncLog == nullptr) asyncLog = new AsyncLog;
}

void Log(spdlog::level::level_enum level, std::string_view line) {
  const std::string text = Cleaned(line);
  if (AsyncLog* const log = asyncLog) {
    log->Add(level, text);
  } else {
    StderrSink().log({"", level, text});
  }
}

void LogRequest(spdlog::level::level_enum level, const std::string& client, std::string_view line) {
  AsyncLog* const log = asyncLog;
  if (log == nullptr || log->limit.Admit(client)) Log(level, line);
}

void LogOmitted() {
  AsyncLog* const log = asyncLog;
  if (log == nullptr) return;
  for (const auto& [client, count] : log->limit.Reset()) {
    Log(spdlog::level::warn,
        std::to_string(count) + " more requests from " + client + " were refused in a second");
  }
  if (log->sink->Dropped() > 0) log->Add(spdlog::level::info, "");
}

void FlushLog(std::chrono::milliseconds timeout) {
  constexpr std::chrono::milliseconds kInterval(1);
  AsyncLog* const log = asyncLog;
  if (log == nullptr) return;
  LogOmitted();
  const auto end = Clock::now() + timeout;
  while (log->sink->handled + log->pool->overrun_counter() < log->added && Clock::now() < end) {
    std::this_thread::sleep_for(kInterval);
  }
}

bool ClientLineLimit::Admit(const std::string& client) {
  const std::lock_guard lock(mutex);
  auto found = lines.find(client);
  if (found == lines.end()) {
    found = lines.emplace(lines.size() < kMaxClients ? client : "other clients", 0).first;
  }
  return ++found->second <= kMaxLines;
}

std::vector<std::pair<std::string, std::size_t>> ClientLineLimit::Reset() {
  const std::lock_guard lock(mutex);
  std::vector<std::pair<std::string, std::size_t>> exceeded;
  for (const auto& [client, count] : lines) {
    if (count > kMaxLines) exceeded.emplace_back(client, count - kMaxLines);
  }
  lines.clear();
  return exceeded;
}

}  // namespace phonebook
