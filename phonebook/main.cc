// A company phone book for the phones of all makers that libteleform knows.
#include <malloc.h>
#include <poll.h>
#include <signal.h>  // NOLINT(modernize-deprecated-headers): sigwait is POSIX
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <iostream>
#include <optional>
#include <sstream>
#include <string>
#include <system_error>
#include <utility>

#include "phonebook/admin_server.h"
#include "phonebook/assets.h"
#include "phonebook/contacts.h"
#include "phonebook/database/backup.h"
#include "phonebook/database/connection.h"
#include "phonebook/database/import.h"
#include "phonebook/database/store.h"
#include "phonebook/log.h"
#include "phonebook/options.h"
#include "phonebook/server.h"
#include "phonebook/signals.h"

namespace {

using phonebook::Options;
using phonebook::Signals;

constexpr std::chrono::milliseconds kFlushTimeout(300);

// Shows the progress of an import on a terminal.
void ShowProgress(std::size_t done, std::size_t total) {
  static const bool isTerminal = isatty(STDERR_FILENO) == 1;
  static std::size_t shown = 0;
  const std::size_t percent = 100 * done / std::max<std::size_t>(total, 1);
  if (!isTerminal || total < 10000 || percent == std::exchange(shown, percent)) return;
  std::cerr << "\rphonebook: importing contacts, " << percent << " %" << (done == total ? "\n" : "")
            << std::flush;
}

struct Stopped {};  // by a signal

phonebook::Differences CreateOrOpen(phonebook::Store& store,
                                    const std::vector<phonebook::Contact>& contacts,
                                    phonebook::ImportMode mode, Signals& signals) {
  const auto stopping = signals.OnStop([&] { store.Interrupt(); });
  const auto report = [&](std::size_t done, std::size_t total) {
    ShowProgress(done, total);
    if (signals.isStopped) throw Stopped();
  };
  return store.CreateOrOpen(contacts, report, mode);
}

// Creates the database from the contacts in a file, or from samples, unless it exists.
void CreateOrOpen(const Options& options, Signals& signals) {
  std::istringstream samples(phonebook::kSampleContacts);
  const auto contacts = options.contacts.empty()
                            ? phonebook::ReadContacts(samples, "the sample contacts")
                            : phonebook::ReadContacts(options.contacts);
  phonebook::Store store(options.database);
  const auto differences =
      CreateOrOpen(store, contacts, phonebook::ImportMode::kUnlessItExists, signals);
  if (differences.added > 0 || options.contacts.empty()) return;
  phonebook::Log(spdlog::level::warn,
                 "the option --contacts does nothing, as the database exists: run phonebook "
                 "import " +
                     options.contacts);
}

// Makes the contacts those of a file.
void Import(const Options& options, Signals& signals) {
  const auto contacts = phonebook::ReadContacts(options.file);
  const auto mode =
      options.isForced ? phonebook::ImportMode::kForce : phonebook::ImportMode::kReplace;
  phonebook::Store store(options.database);
  const auto differences = CreateOrOpen(store, contacts, mode, signals);
  std::cout << "phonebook: " << differences.added << " added, " << differences.changed
            << " changed, " << differences.removed << " removed, "
            << contacts.size() - differences.added - differences.changed << " unchanged\n";
}

void BackUp(const Options& options, Signals& signals) {
  const auto stopping = signals.OnStop([] {});
  phonebook::BackUp(options.database, options.file, [&] {
    if (signals.isStopped) throw Stopped();
  });
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
  phonebook::Log(spdlog::level::warn, "only " + std::to_string(most) +
                                          " connections are possible, as the limit of " +
                                          "open files is " + std::to_string(files.rlim_cur));
}

// A full pipe that nobody reads must not keep the server from starting.
void PrintAddresses(const std::string& host, const std::string& admin, bool hasPreview) {
  constexpr int kTimeout = 100;  // milliseconds
  pollfd file{STDOUT_FILENO, POLLOUT, 0};
  if (poll(&file, 1, kTimeout) <= 0) return;
  std::cout << "phonebook: listening on " << host << "; for each maker, try\n"
            << phonebook::Addresses("  curl http://" + host);
  if (!admin.empty()) std::cout << "for a monitor, http://" << admin << "/health and /metrics\n";
  if (hasPreview) std::cout << "and, in a browser, http://" << host << "/preview\n";
  std::cout << std::flush;
}

// Logs why a command has failed.
// @return its status.
int Fail(spdlog::level::level_enum level, const std::string& reason) {
  std::istringstream lines(reason);
  for (std::string line; std::getline(lines, line);) phonebook::Log(level, line);
  phonebook::FlushLog(kFlushTimeout);
  return EXIT_FAILURE;
}

int Serve(Options& options, Signals& signals) {
  // Returns the memory of large responses to the system: 118 MB instead of 176 MB stay after 1,500
  // clients that read nothing of a page of 1 MB.
  mallopt(M_MMAP_THRESHOLD, 128 * 1024);
  phonebook::StartLog();
  LimitConnections(options.server);
  phonebook::Server server(options.database, options.server);
  const std::string host = server.Listen();
  CreateOrOpen(options, signals);
  std::optional<phonebook::AdminServer> admin(std::in_place, options.admin, options.server.hosts,
                                              server);
  PrintAddresses(host, admin->Address(), !options.server.isPreviewOff);
  const auto stopping = signals.OnStop([&] { server.Stop(); });
  const bool hasEnded = server.Run();
  admin.reset();
  phonebook::Log(spdlog::level::info, "stopped");
  phonebook::FlushLog(kFlushTimeout);
  if (!hasEnded) std::_Exit(EXIT_SUCCESS);  // a worker hangs in the database
  return 0;
}

}  // namespace

int main(int argc, char** argv) try {
  Options options;
  if (const auto status = phonebook::ParseOptions(argc, argv, options)) return *status;
  // It outlives its detached thread. A server has done all it should when it is stopped early.
  static Signals signals(options.command == Options::Command::kServe ? EXIT_SUCCESS : EXIT_FAILURE);
  signal(SIGHUP, SIG_IGN);  // the terminal may close
  signal(SIGPIPE, SIG_IGN);
  signal(SIGXFSZ, SIG_IGN);  // the write fails
  if (options.command == Options::Command::kServe) return Serve(options, signals);
  (options.command == Options::Command::kImport ? Import : BackUp)(options, signals);
  return 0;
} catch (const Stopped&) {
  return Fail(spdlog::level::warn, "stopped; the database is unchanged");
} catch (const std::filesystem::filesystem_error& error) {
  return Fail(spdlog::level::err, error.what());
} catch (const std::system_error& error) {
  return Fail(spdlog::level::err, "can't create a thread: " + error.code().message());
} catch (const soci::soci_error& error) {
  return Fail(spdlog::level::err, phonebook::MessageOf(error));
} catch (const std::exception& error) {
  return Fail(spdlog::level::err, error.what());
}
