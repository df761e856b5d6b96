// kxportal: serves the procurement portal over a reference database.
//
//   kxportal --db FILE [--host 127.0.0.1] [--port 8080] [--threads N] [--connections N]
//
// Prints "listening on http://HOST:PORT" once it accepts connections (with --port 0 the
// port the system chose), and stops cleanly on SIGINT or SIGTERM.
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>

#include "apps/portal/server.h"

namespace {

httplib::Server* g_server = nullptr;

void stop(int) {
  if (g_server) g_server->stop();
}

int usage() {
  std::cerr << "usage: kxportal --db <file or url> [--host H] [--port P] [--threads N] "
               "[--connections N]\n";
  return 2;
}

}  // namespace

int main(int argc, char** argv) {
  portal::ServerConfig config;
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    if (i + 1 >= argc) return usage();
    const std::string value = argv[++i];
    try {
      if (arg == "--db") config.db_url = value;
      else if (arg == "--host") config.host = value;
      else if (arg == "--port") config.port = std::stoi(value);
      else if (arg == "--threads") config.threads = std::stoi(value);
      else if (arg == "--connections") config.connections = std::stoi(value);
      else return usage();
    } catch (const std::exception&) {
      return usage();
    }
  }
  if (config.db_url.empty()) return usage();
  try {
    portal::PortalServer server(config);
    g_server = &server.http();
    std::signal(SIGINT, stop);
    std::signal(SIGTERM, stop);
    const int port = server.bind();
    if (port <= 0) {
      std::cerr << "cannot listen on " << config.host << ":" << config.port << "\n";
      return 1;
    }
    std::cout << "listening on http://" << config.host << ":" << port << std::endl;
    server.listen();
  } catch (const kxui::Failure& f) {
    std::cerr << "kxportal: " << f.description() << "\n";
    return 1;
  }
  return 0;
}
