#include "phonebook/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <memory>
#include <set>

#include "phonebook/numbers.h"
#include "phonebook/trusted_proxies.h"
#include "phonebook/url.h"

namespace phonebook {

namespace {

// Replaces a value by its normalized form, or refuses it.
CLI::Validator Normalized(std::optional<std::string> (*normalize)(const std::string&),
                          const char* expected) {
  return {[normalize, expected](std::string& text) -> std::string {
            const auto normalized = normalize(text);
            text = normalized.value_or(text);
            return normalized ? "" : expected;
          },
          ""};
}

std::optional<std::string> NormalizeHost(const std::string& host) {
  const bool isBareIPv6 = std::count(host.begin(), host.end(), ':') > 1 && host.front() != '[';
  return HostNameOf(isBareIPv6 ? "[" + host + "]" : host);
}

std::optional<std::string> CheckAdminAddress(const std::string& address) {
  const auto colon = address.rfind(':');
  const bool isAddress = HostNameOf(address) && IPAddressOf(address.substr(0, colon)) &&
                         colon < address.size() - 1 && address.back() != ']';
  return address.empty() || isAddress ? std::optional(address) : std::nullopt;
}

std::optional<std::string> CheckProxy(const std::string& network) try {
  const TrustedProxies proxies({network});
  return network;
} catch (const std::exception&) {
  return std::nullopt;
}

std::optional<std::string> CheckRegion(const std::string& region) {
  return region.empty() || IsRegion(region) ? std::optional(region) : std::nullopt;
}

// CLI11 ignores a line that repeats a name.
class Configuration : public CLI::ConfigTOML {
 public:
  std::vector<CLI::ConfigItem> from_config(std::istream& file) const override {
    auto lines = CLI::ConfigTOML::from_config(file);
    std::set<std::string> names;
    for (const auto& line : lines) {
      if (names.insert(line.fullname()).second) continue;
      throw CLI::ConfigError("the configuration repeats " + line.name);
    }
    return lines;
  }
};

void AddOptions(CLI::App& app, Options& options) {
  ServerOptions& server = options.server;
  app.set_version_flag("--version", PHONEBOOK_VERSION);
  app.set_help_all_flag("--help-all", "print this, and the options of all commands");
  app.set_config("--config", "/etc/teleform/phonebook.conf",
                 "file with a line NAME = VALUE for any of these options");
  app.config_formatter(std::make_shared<Configuration>());
  app.allow_config_extras(CLI::config_extras_mode::error);
  app.option_defaults()->always_capture_default();
  app.add_option("--address", server.address, "IP address to listen on");
  app.add_option("--port", server.port, "port to listen on, 0 for any free port")
      ->check(CLI::Range(0, 65535));
  app.add_option("--admin-address", options.admin,
                 "IP address and port of /health and /metrics; none if empty")
      ->transform(Normalized(CheckAdminAddress, "it must be like 127.0.0.1:9480"));
  app.add_option("--max-connections", server.maxConnections, "open connections of clients")
      ->check(CLI::Range(1, 1000000));
  app.add_option("--database", options.database, "SQLite file, or postgresql://user@host/database");
  app.add_option("--database-connections", server.databaseConnections,
                 "connections to the database")
      ->check(CLI::Range(1, 1000));
  app.add_option("--base-url", server.baseURL,
                 "beginning of all links; if empty, the host of the request")
      ->transform(Normalized(NormalizeBaseURL, "it must be like http://phonebook.example:8080"));
  app.add_option("--host", server.hosts,
                 "host name or IP address that requests may name, repeatable; any if none")
      ->transform(Normalized(NormalizeHost, "it must be a host name or IP address"));
  app.add_option("--trusted-proxy", server.proxies,
                 "IP address or network of a proxy that tells its clients, repeatable")
      ->transform(Normalized(CheckProxy, "it must be like 192.0.2.1 or 192.0.2.0/24"));
  app.add_option("--language", options.language, "language of the pages")
      ->check(CLI::IsMember(Languages()));
  app.add_option("--region", server.pages.region,
                 "country of numbers without one, such as DE; none if empty")
      ->transform(Normalized(CheckRegion, "it must be a country such as DE"));
  app.add_flag("--no-preview", server.isPreviewOff, "serve no preview at /preview");
  app.add_option("--contacts", options.contacts,
                 "file to import into a new database; if empty, sample contacts")
      ->check(CLI::ExistingFile);
}

void AddCommands(CLI::App& app, Options& options) {
  app.require_subcommand(0, 1);
  app.fallthrough();
  CLI::App* const importing =
      app.add_subcommand("import", "Make the contacts those of a file, also while servers run");
  importing
      ->add_option("FILE", options.file, "contacts as CSV with a header, or one a line with tabs")
      ->required()
      ->check(CLI::ExistingFile);
  importing->add_flag("--force", options.isForced, "even if more than half of the contacts go");
  CLI::App* const backingUp =
      app.add_subcommand("backup", "Copy an SQLite database, also while servers run");
  backingUp->add_option("FILE", options.file, "new file of the copy")->required();
  importing->callback([&] { options.command = Options::Command::kImport; });
  backingUp->callback([&] { options.command = Options::Command::kBackUp; });
}

}  // namespace

std::optional<int> ParseOptions(int argc, char** argv, Options& options) {
  CLI::App app("A company phone book for IP phones, and a preview of it at /preview.", "phonebook");
  AddOptions(app, options);
  AddCommands(app, options);
  try {
    app.parse(argc, argv);
    options.server.pages.catalogue = Catalogue(options.language);
    return std::nullopt;
  } catch (const CLI::ParseError& error) {
    return app.exit(error);
  }
}

}  // namespace phonebook
