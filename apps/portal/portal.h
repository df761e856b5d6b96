// The web portal: a thin HTTP layer over the façades. A request finds the user's
// UISession, calls one or two operations and renders what they return. Business rules
// live in the library and the business tier, never here.
#pragma once

#include <httplib.h>

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>

#include "apps/portal/html.h"
#include "apps/portal/store.h"
#include "kxui/frame/runtime.h"
#include "kxui/frame/session.h"
#include "kxui/session/ui_session.h"
#include "reference/database.h"
#include "reference/errors.h"

namespace portal {

struct PortalOptions {
  int64_t session_seconds = 8 * 3600;
  // More failed sign-ins than this within the window refuse further tries for a while.
  int32_t max_failures_per_login = 5;
  int32_t max_failures_per_address = 30;
  int64_t failure_window_seconds = 600;
  int32_t ebo_id = 1;
  // Sessions kept in memory beyond this many drop those idle longest (their rows stay:
  // the next request rebuilds them).
  size_t max_cached_sessions = 2000;
};

// One signed-in session as this process holds it; rebuilt from its row when absent.
struct User {
  std::mutex mutex;  // one request of a session at a time: the façades keep Error state
  std::string sid;
  SessionRow row;
  std::shared_ptr<kxui::BasicSession> session;
  std::shared_ptr<kxui::UISession> hub;
  int64_t last_used = 0;  // seconds; guarded by the portal's map lock
};

class Portal;

// What a handler works with.
struct Ctx {
  const httplib::Request& req;
  httplib::Response& res;
  User& user;
  Portal& portal;

  const kxui::SessionPtr session() const { return user.session; }
  kxui::UISession& hub() const { return *user.hub; }
  const std::string& csrf() const { return user.row.csrf_token; }
  std::string param(const char* name) const;
  int32_t int_param(const char* name, int32_t fallback = 0) const;
  int32_t path_int(size_t index) const;
  void render(const std::string& title, const std::string& body, const std::string& notice = "",
              const std::string& error = "", int status = 200);
  void redirect(const std::string& to, const std::string& notice = "");
};

// An error number as people quote it: message numbers (negative as 32-bit) in hex.
std::string error_number_text(int32_t number);

// "Description (error N)" of a façade's last failure.
template <class F>
std::string failure_text(F& facade) {
  auto e = facade.Error();
  if (!e) return "The operation failed.";
  std::string d = e->Description();
  if (d.empty()) d = "The operation failed.";
  return d + " (error " + error_number_text(e->Number()) + ")";
}

// The HTTP status of a refused operation: another organisation's document is forbidden,
// a missing one not found, anything else `otherwise`.
template <class F>
int refusal_status(F& facade, int otherwise) {
  using kxui::reference::Refusal;
  using kxui::reference::error_number;
  auto e = facade.Error();
  const int32_t number = e ? e->Number() : 0;
  if (number == error_number(Refusal::kNotAllowed)) return 403;
  if (number == error_number(Refusal::kNotFound)) return 404;
  return otherwise;
}

class Portal {
 public:
  using Handler = std::function<void(Ctx&)>;
  Portal(std::shared_ptr<kxui::Runtime> runtime, kxui::reference::DatabasePtr db,
         PortalOptions options = {});
  void mount(httplib::Server& server);

  const std::shared_ptr<kxui::Runtime>& runtime() const { return runtime_; }
  SessionStore& store() { return store_; }
  // The user's session values changed (preferences): the cached session follows.
  void apply_row(User& user, const SessionRow& row);
  size_t cached_sessions();

 private:
  void get(httplib::Server& s, const std::string& pattern, Handler h);
  void post(httplib::Server& s, const std::string& pattern, Handler h);
  void run(const httplib::Request& req, httplib::Response& res, const Handler& h, bool is_post);
  std::shared_ptr<User> user_of(const httplib::Request& req);
  // Drops the half of the cached sessions idle longest; callers hold users_mutex_.
  void evict_idle();
  void sign_in_page(const httplib::Request& req, httplib::Response& res, const std::string& error,
                    int status);
  void sign_in(const httplib::Request& req, httplib::Response& res);
  void sign_out(const httplib::Request& req, httplib::Response& res);

  void mount_requisitions(httplib::Server& s);
  void mount_items(httplib::Server& s);
  void mount_workflow(httplib::Server& s);
  void mount_orders(httplib::Server& s);
  void mount_receiving(httplib::Server& s);
  void mount_account(httplib::Server& s);

  std::shared_ptr<kxui::Runtime> runtime_;
  kxui::reference::DatabasePtr db_;
  PortalOptions options_;
  SessionStore store_;
  std::mutex users_mutex_;
  std::unordered_map<std::string, std::shared_ptr<User>> users_;
};

// The files of an owner (1 requisition, 3 order): list, download, remove and upload.
std::string attachments_block(Ctx& c, int32_t option, int32_t id);

// The cookie's session id from a request, "" when there is none.
std::string session_cookie(const httplib::Request& req);

}  // namespace portal
