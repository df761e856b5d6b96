#include "apps/portal/server.h"

#include <sys/socket.h>

#include <algorithm>
#include <filesystem>

#include "reference/register.h"
#include "services/register.h"

namespace portal {

PortalServer::PortalServer(const ServerConfig& config)
    : config_(config), runtime_(std::make_shared<kxui::Runtime>()) {
  kxui::reference::DatabaseOptions db_options;
  db_options.connections = config.connections > 0 ? config.connections : std::min(config.threads, 8);
  db_ = kxui::reference::Database::Open(config.db_url, db_options);
  kxui::services::ServiceOptions services;
  services.ini_directory = std::filesystem::temp_directory_path();
  kxui::services::RegisterDefaultServices(*runtime_, services);
  kxui::reference::RegisterOptions options;
  options.table_settings = true;
  options.table_log = true;
  kxui::reference::Register(*runtime_, db_, options);
  portal_ = std::make_unique<Portal>(runtime_, db_, config.portal);
  portal_->mount(http_);
  const int threads = config.threads;
  http_.new_task_queue = [threads] { return new httplib::ThreadPool(threads); };
  http_.set_payload_max_length(16 * 1024 * 1024);
  http_.set_keep_alive_max_count(100);
  // The library listens with a backlog of 5: under many new connections at once the
  // kernel drops the rest and clients wait a second to retry. Keep the socket so that
  // bind() can widen the backlog.
  http_.set_socket_options([this](socket_t sock) {
    int yes = 1;
    ::setsockopt(sock, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    listen_socket_ = sock;
  });
}

PortalServer::~PortalServer() { http_.stop(); }

int PortalServer::bind() {
  const int port = config_.port == 0 ? http_.bind_to_any_port(config_.host)
                   : http_.bind_to_port(config_.host, config_.port) ? config_.port
                                                                   : -1;
  if (port > 0 && listen_socket_ >= 0) ::listen(listen_socket_, SOMAXCONN);
  return port;
}

void PortalServer::listen() { http_.listen_after_bind(); }

void PortalServer::stop() { http_.stop(); }

}  // namespace portal
