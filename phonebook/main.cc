// A company phone book for the phones of all makers that libteleform knows.
#include <signal.h>  // NOLINT(modernize-deprecated-headers): sigwait is POSIX
#include <sys/resource.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <exception>
#include <functional>
#include <iostream>
#include <memory>
#include <mutex>
#include <regex>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "phonebook/assets.h"
#include "phonebook/contacts.h"
#include "phonebook/database/store.h"
#include "phonebook/server.h"

namespace {

// Waits for SIGTERM and SIGINT from the moment that it is made, which must be before there are
// other threads.
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

  // While what this returns lives, stopping is done by `how`, at once if it was asked for before.
  std::shared_ptr<void> StopBy(std::function<void()> how) {
    const std::lock_guard lock(mutex);
    stop = std::move(how);
    if (isStopped) stop();
    return {this, [](Signals* signals) {
              const std::lock_guard relock(signals->mutex);
              signals->stop = [] {};
            }};
  }

  std::atomic<bool> isStopped = false;

 private:
  std::mutex mutex;
  std::function<void()> stop = [] { std::_Exit(EXIT_SUCCESS); };  // nothing is begun
};

// Tells a terminal how far reading in has come.
void Show(std::size_t done, std::size_t all) {
  static const bool isTerminal = isatty(STDERR_FILENO) == 1;
  static std::size_t shown = 0;
  const std::size_t percent = 100 * done / std::max<std::size_t>(all, 1);
  if (!isTerminal || all < 10000 || percent == std::exchange(shown, percent)) return;
  std::cerr << "\rphonebook: reading the contacts in, " << percent << " %"
            << (done == all ? "\n" : "") << std::flush;
}

// Makes a database of the contacts in a file, or of samples, if there is none yet.
// @return false when that was stopped.
bool Prepare(const std::string& database, const std::string& file, Signals& signals) {
  std::istringstream samples(phonebook::kSampleContacts);
  const auto contacts = file.empty() ? phonebook::ReadContacts(samples, "the sample contacts")
                                     : phonebook::ReadContacts(file);
  phonebook::Store store(database);
  const auto stopping = signals.StopBy([&] { store.Interrupt(); });
  return store.CreateOrOpen(contacts, [&](std::size_t done, std::size_t all) {
    Show(done, all);
    return !signals.isStopped;
  });
}

std::string CheckURL(const std::string& url) {
  static const std::regex pattern(
      "https?://[A-Za-z0-9._-]+(:[0-9]+)?(/[A-Za-z0-9/._~-]*)?|"
      "https?://\\[[0-9A-Fa-f:.]+\\](:[0-9]+)?(/[A-Za-z0-9/._~-]*)?");
  return std::regex_match(url, pattern) ? "" : "it must be like http://phonebook.example:8080";
}

int Main(int argc, char** argv) {
  phonebook::ServerOptions options;
  std::string database = "phonebook.db";
  std::string contacts;
  CLI::App app("A company phone book for IP phones, and a preview of it at /preview.", "phonebook");
  app.option_defaults()->always_capture_default();
  app.add_option("--address", options.address, "IP address to listen on");
  app.add_option("--port", options.port, "port to listen on, 0 for any that is free")
      ->check(CLI::Range(0, 65535));
  app.add_option("--phones", options.phones, "phones connected at the same time")
      ->check(CLI::Range(1, 1000000));
  app.add_option("--database", database, "SQLite file, or postgresql://user@host/database");
  app.add_option("--connections", options.connections, "connections to the database")
      ->check(CLI::Range(1, 1000));
  app.add_option("--base-url", options.baseURL,
                 "how phones reach the server, if not by the host that they name")
      ->check(CheckURL);
  app.add_option("--contacts", contacts, "contacts to fill a new database with; samples if empty")
      ->check(CLI::ExistingFile);
  CLI11_PARSE(app, argc, argv);

  static Signals signals;  // for whose thread nobody waits
  signal(SIGPIPE, SIG_IGN);
  rlimit files{};
  if (getrlimit(RLIMIT_NOFILE, &files) == 0) {
    files.rlim_cur = files.rlim_max;
    setrlimit(RLIMIT_NOFILE, &files);
    // Phones must not take the files that the database needs.
    const rlim_t others = 16 + 4 * options.connections;
    const rlim_t most = std::max(files.rlim_cur, others + 1) - others;
    options.phones = std::min<std::size_t>(options.phones, most);
  }

  phonebook::Server server(database, options);
  const std::string host = server.Listen();
  if (!Prepare(database, contacts, signals)) {
    std::cerr << "phonebook: stopped; the database is as it was\n";
    return 1;
  }
  std::cout << "phonebook: listening on " << host << "; for each maker, try\n";
  std::istringstream addresses(phonebook::Addresses("http://" + host));
  for (std::string address; std::getline(addresses, address);) {
    std::cout << "  curl " << address << "\n";
  }
  std::cout << "and, in a browser, http://" << host << "/preview\n" << std::flush;
  const auto stopping = signals.StopBy([&] { server.Stop(); });
  const bool isFree = server.Run();
  std::cout << "phonebook: stopped\n" << std::flush;
  if (!isFree) std::_Exit(EXIT_SUCCESS);  // the database holds a worker that nothing can wait for
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Main(argc, argv);
  } catch (const std::exception& error) {
    std::cerr << "phonebook: " << error.what() << "\n";
    return 1;
  }
}
