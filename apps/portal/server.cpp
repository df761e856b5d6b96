#include "apps/portal/server.h"

#include <filesystem>

#include "reference/register.h"
#include "services/register.h"

namespace portal {

PortalServer::PortalServer(const ServerConfig& config)
    : config_(config), runtime_(std::make_shared<kxui::Runtime>()) {
  db_ = kxui::reference::Database::Open(config.db_url);
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
}

PortalServer::~PortalServer() { http_.stop(); }

int PortalServer::bind() {
  if (config_.port == 0) return http_.bind_to_any_port(config_.host);
  return http_.bind_to_port(config_.host, config_.port) ? config_.port : -1;
}

void PortalServer::listen() { http_.listen_after_bind(); }

void PortalServer::stop() { http_.stop(); }

}  // namespace portal
