// A company phone book for the phones of all makers that libteleform knows.
#include <signal.h>  // NOLINT(modernize-deprecated-headers): sigwait is POSIX
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "contacts.h"
#include "phonebook/assets.h"
#include "phonebook/server.h"
#include "phonebook/store.h"

namespace {

std::vector<Contact> SampleContacts() {
  std::istringstream contacts(phonebook::kSampleContacts);
  return ReadContacts(contacts, "the sample contacts");
}

// Serves until SIGTERM or SIGINT, which must be blocked, comes.
void ServeUntil(const sigset_t& signals, phonebook::Server& server) {
  std::exception_ptr failure;
  std::thread serving([&] {
    try {
      server.Run();
    } catch (const std::exception&) {
      failure = std::current_exception();
      kill(getpid(), SIGTERM);
    }
  });
  int signal = 0;
  sigwait(&signals, &signal);
  if (failure == nullptr) server.Stop();
  serving.join();
  if (failure != nullptr) std::rethrow_exception(failure);
}

int Main(int argc, char** argv) {
  phonebook::ServerOptions options;
  std::string database = "phonebook.db";
  std::string contacts;
  std::size_t connections = 8;
  CLI::App app("A company phone book for IP phones, and a preview of it at /preview.", "phonebook");
  app.option_defaults()->always_capture_default();
  app.add_option("--address", options.address, "address to listen on");
  app.add_option("--port", options.port, "port to listen on, 0 for any that is free")
      ->check(CLI::Range(0, 65535));
  app.add_option("--database", database, "SQLite file, or postgresql://user@host/database");
  app.add_option("--connections", connections, "connections to the database")
      ->check(CLI::Range(1, 1000));
  app.add_option("--threads", options.threads, "phones served at the same time")
      ->check(CLI::Range(1, 10000));
  app.add_option("--base-url", options.baseURL,
                 "how phones reach the server, if not by the host that they name");
  app.add_option("--contacts", contacts, "contacts to fill a new database with; samples if empty")
      ->check(CLI::ExistingFile);
  CLI11_PARSE(app, argc, argv);

  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGTERM);
  sigaddset(&signals, SIGINT);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  signal(SIGPIPE, SIG_IGN);

  phonebook::Store store(database, connections);
  store.Prepare(contacts.empty() ? SampleContacts() : ReadContacts(contacts));
  phonebook::Server server(store, options);
  const std::string host = server.Bind();
  std::cout << "phonebook: listening on " << host << "; for each maker, try\n";
  std::istringstream addresses(phonebook::Addresses("http://" + host));
  for (std::string address; std::getline(addresses, address);) {
    std::cout << "  curl " << address << "\n";
  }
  std::cout << "and, in a browser, http://" << host << "/preview\n" << std::flush;
  ServeUntil(signals, server);
  std::cout << "phonebook: stopped\n";
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
