// A company phone book for the phones of all makers that libteleform knows.
#include <malloc.h>
#include <poll.h>
#include <signal.h>  // NOLINT(modernize-deprecated-headers): sigwait is POSIX
#include <sys/resource.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <functional>
#include <iostream>
#include <memory>
#include <mutex>
#include <sstream>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

#include "phonebook/assets.h"
#include "phonebook/contacts.h"
#include "phonebook/database/store.h"
#include "phonebook/log.h"
#include "phonebook/numbers.h"
#include "phonebook/server.h"
#include "phonebook/url.h"

namespace {

constexpr std::chrono::milliseconds kFlushTimeout(300);

struct Options {
  phonebook::ServerOptions server;
  std::string database = "phonebook.db";
  std::string contacts;
};

// Handles SIGTERM and SIGINT. Must be created before other threads, which inherit the signal mask.
class Signals {
 public:
  Signals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGINT);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    std::thread([this, signals] {
      for (int number = 0; sigwait(&signals, &number) == 0;) {
        const std::lock_guard lock(mutex);
        isStopped = true;
        stop();
      }
    }).detach();
  }

  // Calls `handler` on a signal, at once if there was one before, while the returned value lives.
  std::shared_ptr<void> OnStop(std::function<void()> handler) {
    const std::lock_guard lock(mutex);
    stop = std::move(handler);
    if (isStopped) stop();
    return {this, [](Signals* signals) {
              const std::lock_guard relock(signals->mutex);
              signals->stop = [] {};
            }};
  }

  std::atomic<bool> isStopped = false;

 private:
  std::mutex mutex;
  std::function<void()> stop = [] { std::_Exit(EXIT_SUCCESS); };  // nothing has begun
};

// Shows the progress of an import on a terminal.
void ShowProgress(std::size_t done, std::size_t total) {
  static const bool isTerminal = isatty(STDERR_FILENO) == 1;
  static std::size_t shown = 0;
  const std::size_t percent = 100 * done / std::max<std::size_t>(total, 1);
  if (!isTerminal || total < 10000 || percent == std::exchange(shown, percent)) return;
  std::cerr << "\rphonebook: importing contacts, " << percent << " %" << (done == total ? "\n" : "")
            << std::flush;
}

// Creates the database from the contacts in a file, or from samples, unless it exists.
// @return false when a signal stopped it.
bool CreateOrOpen(const Options& options, Signals& signals) {
  std::istringstream samples(phonebook::kSampleContacts);
  const auto contacts = options.contacts.empty()
                            ? phonebook::ReadContacts(samples, "the sample contacts")
                            : phonebook::ReadContacts(options.contacts);
  phonebook::Store store(options.database);
  const auto stopping = signals.OnStop([&] { store.Interrupt(); });
  return store.CreateOrOpen(contacts, [&](std::size_t done, std::size_t total) {
    ShowProgress(done, total);
    return !signals.isStopped;
  });
}

std::string NormalizeBaseURL(std::string& url) {
  const auto normalized = phonebook::NormalizeBaseURL(url);
  url = normalized.value_or(url);
  return normalized ? "" : "it must be like http://phonebook.example:8080";
}

std::string NormalizeHost(std::string& host) {
  const bool isBareIPv6 = std::count(host.begin(), host.end(), ':') > 1 && host.front() != '[';
  const auto name = phonebook::HostNameOf(isBareIPv6 ? "[" + host + "]" : host);
  host = name.value_or(host);
  return name ? "" : "it must be a host name or IP address";
}

void AddOptions(CLI::App& app, Options& options) {
  app.option_defaults()->always_capture_default();
  app.add_option("--address", options.server.address, "IP address to listen on");
  app.add_option("--port", options.server.port, "port to listen on, 0 for any free port")
      ->check(CLI::Range(0, 65535));
  app.add_option("--max-connections", options.server.maxConnections, "open connections of clients")
      ->check(CLI::Range(1, 1000000));
  app.add_option("--database", options.database, "SQLite file, or postgresql://user@host/database");
  app.add_option("--database-connections", options.server.databaseConnections,
                 "connections to the database")
      ->check(CLI::Range(1, 1000));
  app.add_option("--base-url", options.server.baseURL,
                 "beginning of all links; if empty, the host of the request")
      ->transform(CLI::Validator(NormalizeBaseURL, ""));
  app.add_option("--host", options.server.hosts,
                 "host name or IP address that requests may name, repeatable; any if none")
      ->transform(CLI::Validator(NormalizeHost, ""));
  app.add_option("--region", options.server.pages.region,
                 "country of numbers without one, such as DE; none if empty")
      ->check([](const std::string& region) {
        const bool isValid = region.empty() || phonebook::IsRegion(region);
        return isValid ? "" : "it must be a country such as DE";
      });
  app.add_option("--contacts", options.contacts,
                 "file to import into a new database; if empty, sample contacts")
      ->check(CLI::ExistingFile);
}

// Allows as many open files as the system does, and leaves the database those that it needs.
void LimitConnections(phonebook::ServerOptions& options) {
  rlimit files{};
  if (getrlimit(RLIMIT_NOFILE, &files) != 0) return;
  files.rlim_cur = files.rlim_max;
  setrlimit(RLIMIT_NOFILE, &files);
  const rlim_t others = 16 + 4 * options.databaseConnections;
  const rlim_t most = std::max(files.rlim_cur, others + 1) - others;
  if (most >= options.maxConnections) return;
  options.maxConnections = most;
  phonebook::Log(phonebook::Severity::kWarning,
                 "only " + std::to_string(most) + " connections are possible, as the limit of " +
                     "open files is " + std::to_string(files.rlim_cur));
}

// A full pipe that nobody reads must not keep the server from starting.
void PrintAddresses(const std::string& host) {
  constexpr int kTimeout = 100;  // milliseconds
  pollfd file{STDOUT_FILENO, POLLOUT, 0};
  if (poll(&file, 1, kTimeout) <= 0) return;
  std::cout << "phonebook: listening on " << host << "; for each maker, try\n";
  std::istringstream addresses(phonebook::Addresses("http://" + host));
  for (std::string address; std::getline(addresses, address);) {
    std::cout << "  curl " << address << "\n";
  }
  std::cout << "and, in a browser, http://" << host << "/preview\n" << std::flush;
}

int Main(int argc, char** argv) {
  Options options;
  CLI::App app("A company phone book for IP phones, and a preview of it at /preview.", "phonebook");
  AddOptions(app, options);
  CLI11_PARSE(app, argc, argv);

  static Signals signals;   // outlives its detached thread
  signal(SIGHUP, SIG_IGN);  // the terminal may close
  signal(SIGPIPE, SIG_IGN);
  signal(SIGXFSZ, SIG_IGN);  // the write fails
  // Returns the memory of large responses to the system: 118 MB instead of 176 MB stay after 1,500
  // clients that read nothing of a page of 1 MB.
  mallopt(M_MMAP_THRESHOLD, 128 * 1024);
  phonebook::StartLog();
  LimitConnections(options.server);
  phonebook::Server server(options.database, options.server);
  const std::string host = server.Listen();
  if (!CreateOrOpen(options, signals)) {
    phonebook::Log(phonebook::Severity::kWarning, "stopped; the database is unchanged");
    phonebook::FlushLog(kFlushTimeout);
    return 1;
  }
  PrintAddresses(host);
  const auto stopping = signals.OnStop([&] { server.Stop(); });
  const bool hasEnded = server.Run();
  phonebook::Log(phonebook::Severity::kInfo, "stopped");
  phonebook::FlushLog(kFlushTimeout);
  if (!hasEnded) std::_Exit(EXIT_SUCCESS);  // a worker hangs in the database
  return 0;
}

int Fail(const std::string& reason) {
  phonebook::Log(phonebook::Severity::kError, reason);
  phonebook::FlushLog(kFlushTimeout);
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Main(argc, argv);
  } catch (const std::filesystem::filesystem_error& error) {
    return Fail(error.what());
  } catch (const std::system_error& error) {
    return Fail("can't create a thread: " + error.code().message());
  } catch (const std::exception& error) {
    return Fail(error.what());
  }
}
