// A portal server over one database: the runtime with the default services and the
// reference tier, the portal's routes, and the HTTP server with its thread pool.
#pragma once

#include <httplib.h>

#include <memory>
#include <string>

#include "apps/portal/portal.h"

namespace portal {

struct ServerConfig {
  std::string db_url;
  std::string host = "127.0.0.1";
  int port = 8080;  // 0: any free port
  int threads = 16;
  // PostgreSQL connections the threads share, opened as needed; 0: one per thread, at
  // most 8 (more rarely helps: see docs/deployment.md). SQLite always uses one.
  int connections = 0;
  PortalOptions portal;
};

class PortalServer {
 public:
  // Opens the database (migrating it) and mounts the routes. Throws Failure.
  explicit PortalServer(const ServerConfig& config);
  ~PortalServer();
  // Binds the listening socket; the port, or -1.
  int bind();
  // Serves until stop().
  void listen();
  void stop();
  httplib::Server& http() { return http_; }
  Portal& portal() { return *portal_; }
  const kxui::reference::DatabasePtr& database() const { return db_; }

 private:
  ServerConfig config_;
  kxui::reference::DatabasePtr db_;
  std::shared_ptr<kxui::Runtime> runtime_;
  std::unique_ptr<Portal> portal_;
  httplib::Server http_;
  int listen_socket_ = -1;
};

}  // namespace portal
