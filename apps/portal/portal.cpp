#include "apps/portal/portal.h"

#include <sodium.h>

#include <algorithm>
#include <cctype>
#include <chrono>
#include <vector>
#include <cstdio>

#include "reference/schema.h"
#include "reference/session.h"

namespace portal {

using kxui::BasicSession;
using kxui::Failure;
using kxui::Variant;

namespace {

constexpr const char* kCookie = "sid";
constexpr const char* kPreCookie = "presign";

std::string cookie_value(const httplib::Request& req, std::string_view name) {
  const std::string header = req.get_header_value("Cookie");
  size_t at = 0;
  while (at < header.size()) {
    size_t end = header.find(';', at);
    if (end == std::string::npos) end = header.size();
    std::string_view part(header.data() + at, end - at);
    while (!part.empty() && part.front() == ' ') part.remove_prefix(1);
    if (part.size() > name.size() && part.substr(0, name.size()) == name &&
        part[name.size()] == '=') {
      return std::string(part.substr(name.size() + 1));
    }
    at = end + 1;
  }
  return "";
}

bool same_token(const std::string& a, const std::string& b) {
  return !a.empty() && a.size() == b.size() && sodium_memcmp(a.data(), b.data(), a.size()) == 0;
}

void security_headers(httplib::Response& res) {
  // No script runs on these pages, whatever a stored text contains.
  res.set_header("Content-Security-Policy",
                 "default-src 'none'; style-src 'unsafe-inline'; form-action 'self'; "
                 "frame-ancestors 'none'; base-uri 'none'");
  res.set_header("X-Content-Type-Options", "nosniff");
  res.set_header("Referrer-Policy", "no-referrer");
  res.set_header("Cache-Control", "no-store");
}

void html(httplib::Response& res, const std::string& body, int status) {
  res.status = status;
  res.set_content(body, "text/html; charset=utf-8");
}

// The session values the library reads, from the stored row.
std::shared_ptr<BasicSession> session_of(const SessionRow& row) {
  auto s = std::make_shared<BasicSession>();
  s->value = row.ebo_id;
  s->ebo_id = row.ebo_id;
  s->borg_id = row.borg_id;
  s->sys_user_id = row.sys_user_id;
  s->locale_id = row.locale_id;
  s->time_zone_id = row.time_zone_id;
  s->currency_code = row.currency_code;
  for (const auto& l : kxui::reference::kLocales) {
    if (l.locale_id == row.locale_id) {
      s->lang_code = l.lang_code;
      s->country_code = l.country_code;
    }
  }
  return s;
}

}  // namespace

std::string error_number_text(int32_t number) {
  if (number >= 0) return std::to_string(number);
  char buf[16];
  std::snprintf(buf, sizeof buf, "0x%08X", static_cast<uint32_t>(number));
  return buf;
}

std::string session_cookie(const httplib::Request& req) { return cookie_value(req, kCookie); }

std::string Ctx::param(const char* name) const { return req.get_param_value(name); }

int32_t Ctx::int_param(const char* name, int32_t fallback) const {
  const std::string v = param(name);
  if (v.empty()) return fallback;
  try {
    size_t used = 0;
    const long n = std::stol(v, &used);
    if (used != v.size() || n < INT32_MIN || n > INT32_MAX) return fallback;
    return static_cast<int32_t>(n);
  } catch (...) {
    return fallback;
  }
}

int32_t Ctx::path_int(size_t index) const {
  try {
    return static_cast<int32_t>(std::stol(req.matches[index].str()));
  } catch (...) {
    return 0;
  }
}

void Ctx::render(const std::string& title, const std::string& body, const std::string& notice,
                 const std::string& error, int status) {
  PageParts parts{title, user.row.display_name, csrf(), notice, error, body};
  if (parts.notice.empty()) parts.notice = param("msg");
  html(res, page(parts), status);
}

void Ctx::redirect(const std::string& to, const std::string& notice) {
  std::string target = to;
  if (!notice.empty()) {
    target += (to.find('?') == std::string::npos ? "?msg=" : "&msg=") + url_encode(notice);
  }
  res.status = 303;
  res.set_header("Location", target);
}

Portal::Portal(std::shared_ptr<kxui::Runtime> runtime, kxui::reference::DatabasePtr db,
               PortalOptions options)
    : runtime_(std::move(runtime)), db_(db), options_(options),
      store_(std::move(db), options.session_seconds) {}

size_t Portal::cached_sessions() {
  std::lock_guard<std::mutex> lock(users_mutex_);
  return users_.size();
}

void Portal::apply_row(User& user, const SessionRow& row) {
  user.row = row;
  user.session = session_of(row);
}

void Portal::evict_idle() {
  std::vector<std::pair<int64_t, std::string>> by_age;
  for (const auto& [sid, user] : users_) by_age.emplace_back(user->last_used, sid);
  std::sort(by_age.begin(), by_age.end());
  for (size_t i = 0; i < by_age.size() / 2; ++i) users_.erase(by_age[i].second);
}

std::shared_ptr<User> Portal::user_of(const httplib::Request& req) {
  const std::string sid = session_cookie(req);
  if (sid.empty()) return nullptr;
  // The row decides: a session signed out or changed by another process counts here too.
  std::optional<SessionRow> row = store_.find(sid);
  std::lock_guard<std::mutex> lock(users_mutex_);
  auto it = users_.find(sid);
  if (!row) {
    if (it != users_.end()) users_.erase(it);
    return nullptr;
  }
  const int64_t now = std::chrono::duration_cast<std::chrono::seconds>(
                          std::chrono::steady_clock::now().time_since_epoch())
                          .count();
  if (it == users_.end()) {
    if (users_.size() >= options_.max_cached_sessions) evict_idle();
    auto user = std::make_shared<User>();
    user->sid = sid;
    user->hub = std::make_shared<kxui::UISession>(runtime_);
    apply_row(*user, *row);
    it = users_.emplace(sid, std::move(user)).first;
  } else if (it->second->row.locale_id != row->locale_id ||
             it->second->row.time_zone_id != row->time_zone_id ||
             it->second->row.currency_code != row->currency_code) {
    std::lock_guard<std::mutex> user_lock(it->second->mutex);
    apply_row(*it->second, *row);
  }
  it->second->last_used = now;
  return it->second;
}

void Portal::run(const httplib::Request& req, httplib::Response& res, const Handler& h,
                 bool is_post) {
  security_headers(res);
  std::shared_ptr<User> user;
  try {
    user = user_of(req);
  } catch (const Failure& f) {
    html(res, page({"Service unavailable", "", "", "", f.description(), ""}), 503);
    return;
  }
  if (!user) {
    res.status = 303;
    res.set_header("Location", "/login");
    return;
  }
  std::lock_guard<std::mutex> lock(user->mutex);
  Ctx ctx{req, res, *user, *this};
  // A file upload carries its token as a part of the multipart body.
  const std::string token = req.is_multipart_form_data() ? req.get_file_value("csrf").content
                                                         : req.get_param_value("csrf");
  if (is_post && !same_token(token, user->row.csrf_token)) {
    ctx.render("Request refused",
               "<p>This form has expired or did not come from this site. Go back, reload the "
               "page and try again.</p>",
               "", "The form's security token is missing or wrong.", 403);
    return;
  }
  try {
    h(ctx);
  } catch (const Failure& f) {
    ctx.render("Something went wrong", "", "",
               f.description() + " (error " + error_number_text(f.number()) + ")", 500);
  } catch (const std::exception& e) {
    ctx.render("Something went wrong", "", "", e.what(), 500);
  }
}

void Portal::get(httplib::Server& s, const std::string& pattern, Handler h) {
  s.Get(pattern, [this, h](const httplib::Request& req, httplib::Response& res) {
    run(req, res, h, false);
  });
}

void Portal::post(httplib::Server& s, const std::string& pattern, Handler h) {
  s.Post(pattern, [this, h](const httplib::Request& req, httplib::Response& res) {
    run(req, res, h, true);
  });
}

void Portal::sign_in_page(const httplib::Request& req, httplib::Response& res,
                          const std::string& error, int status) {
  security_headers(res);
  // Before a session exists the form is tied to a random cookie of its own.
  std::string pre = cookie_value(req, kPreCookie);
  if (pre.size() != 64) {
    pre = random_token();
    res.set_header("Set-Cookie", std::string(kPreCookie) + "=" + pre +
                                     "; Path=/login; HttpOnly; SameSite=Strict");
  }
  const std::string body =
      "<div class=\"card login\"><form method=\"post\" action=\"/login\">" + csrf_field(pre) +
      "<div class=\"row\"><label for=\"login\">User name</label><input id=\"login\" "
      "name=\"login\" autocomplete=\"username\" value=\"" + esc(req.get_param_value("login")) +
      "\" required></div><div class=\"row\"><label for=\"password\">Password</label><input "
      "id=\"password\" name=\"password\" type=\"password\" autocomplete=\"current-password\" "
      "required></div><div class=\"row\"><button id=\"signin\">Sign in</button></div></form></div>";
  html(res, page({"Sign in", "", "", req.get_param_value("msg"), error, body}), status);
}

void Portal::sign_in(const httplib::Request& req, httplib::Response& res) {
  if (!same_token(req.get_param_value("csrf"), cookie_value(req, kPreCookie))) {
    return sign_in_page(req, res, "The form's security token is missing or wrong.", 403);
  }
  std::string login = req.get_param_value("login");
  const std::string password = req.get_param_value("password");
  std::string key = login;
  std::transform(key.begin(), key.end(), key.begin(), [](unsigned char c) { return std::tolower(c); });
  const std::string login_key = "login:" + key.substr(0, 150), addr_key = "addr:" + req.remote_addr;
  try {
    if (store_.recent_failures(login_key, options_.failure_window_seconds) >=
            options_.max_failures_per_login ||
        store_.recent_failures(addr_key, options_.failure_window_seconds) >=
            options_.max_failures_per_address) {
      return sign_in_page(req, res, "Too many failed sign-ins. Wait a few minutes and try again.",
                          429);
    }
    auto probe = std::make_shared<BasicSession>();
    probe->value = options_.ebo_id;
    probe->ebo_id = options_.ebo_id;
    kxui::UICom com(runtime_);
    int32_t user_id = 0;
    if (!com.Login(probe, login, password, user_id)) {
      if (com.Error() && com.Error()->Number() != 0) {
        return sign_in_page(req, res, failure_text(com), 503);
      }
      store_.record_failure(login_key);
      store_.record_failure(addr_key);
      return sign_in_page(req, res, "The user name or password is not right.", 401);
    }
    store_.clear_failures(login_key);
    // The business tier's session service knows the user's stored values.
    auto known = std::make_shared<kxui::reference::RefKxSession>(db_);
    known->Begin(options_.ebo_id, user_id);
    SessionRow row;
    row.sys_user_id = user_id;
    row.ebo_id = options_.ebo_id;
    row.borg_id = known->BorgID();
    row.locale_id = known->LocaleID();
    row.time_zone_id = known->TimeZoneID();
    row.currency_code = known->CurrencyCode();
    row.display_name = login;
    known->End();
    const std::string sid = store_.create(row);
    res.set_header("Set-Cookie", std::string(kCookie) + "=" + sid +
                                     "; Path=/; HttpOnly; SameSite=Strict");
    res.status = 303;
    res.set_header("Location", "/");
  } catch (const Failure& f) {
    sign_in_page(req, res, f.description(), 503);
  }
}

void Portal::sign_out(const httplib::Request& req, httplib::Response& res) {
  security_headers(res);
  const std::string sid = session_cookie(req);
  auto user = user_of(req);
  if (user && same_token(req.get_param_value("csrf"), user->row.csrf_token)) {
    {
      std::lock_guard<std::mutex> user_lock(user->mutex);
      user->hub->ReleaseReqPOLock(user->session);
    }
    store_.remove(sid);
    std::lock_guard<std::mutex> lock(users_mutex_);
    users_.erase(sid);
  } else if (user) {
    html(res, page({"Request refused", "", "", "", "The form's security token is missing or wrong.", ""}),
         403);
    return;
  }
  res.set_header("Set-Cookie", std::string(kCookie) + "=; Path=/; HttpOnly; SameSite=Strict; Max-Age=0");
  res.status = 303;
  res.set_header("Location", "/login?msg=" + url_encode("You are signed out."));
}

void Portal::mount(httplib::Server& s) {
  s.Get("/login", [this](const httplib::Request& req, httplib::Response& res) {
    if (user_of(req)) {
      res.status = 303;
      res.set_header("Location", "/");
      return;
    }
    sign_in_page(req, res, "", 200);
  });
  s.Post("/login", [this](const httplib::Request& req, httplib::Response& res) { sign_in(req, res); });
  s.Post("/logout", [this](const httplib::Request& req, httplib::Response& res) { sign_out(req, res); });

  get(s, "/", [](Ctx& c) {
    auto com = c.hub().Com();
    std::string date, ebo_news, borg_news, host_news;
    com->GetHomeDate(c.session(), date);
    com->GetEboNews(c.session()->EboID(), ebo_news);
    com->GetBorgNews(c.session()->BorgID(), c.session()->EboID(), borg_news);
    com->GetHostNews(host_news);
    std::string body = "<p class=\"muted\" id=\"homedate\">Today is " + esc(date) + "</p>";
    body += "<div class=\"grid\">";
    for (const auto& [title, text] : {std::pair<std::string, std::string>{"Company news", ebo_news},
                                      {"Organisation news", borg_news},
                                      {"System news", host_news}}) {
      body += "<div class=\"card\"><h2>" + esc(title) + "</h2><pre class=\"news\">" +
              esc(text.empty() ? "No news." : text) + "</pre></div>";
    }
    body += "</div><div class=\"card\"><h2>Start here</h2><p><a href=\"/req/0/add\">Start a new "
            "requisition</a> · <a href=\"/approvals\">Requisitions waiting for your approval</a>"
            " · <a href=\"/receiving\">Orders to receive</a></p></div>";
    c.render("Home", body);
  });

  mount_requisitions(s);
  mount_items(s);
  mount_workflow(s);
  mount_orders(s);
  mount_receiving(s);
  mount_account(s);

  s.set_error_handler([](const httplib::Request&, httplib::Response& res) {
    if (res.status == 404 && res.body.empty()) {
      security_headers(res);
      html(res, page({"Not found", "", "", "", "There is no such page.", "<p><a href=\"/\">Home</a></p>"}), 404);
    }
  });
  s.set_exception_handler([](const httplib::Request& req, httplib::Response& res, std::exception_ptr e) {
    // The user sees a plain page; the operator's log gets what went wrong.
    try {
      std::rethrow_exception(e);
    } catch (const std::exception& x) {
      std::fprintf(stderr, "portal: %s %s: %s\n", req.method.c_str(), req.path.c_str(), x.what());
    } catch (...) {
      std::fprintf(stderr, "portal: %s %s: unknown failure\n", req.method.c_str(), req.path.c_str());
    }
    security_headers(res);
    html(res, page({"Something went wrong", "", "", "", "The request could not be served.", ""}), 500);
  });
}

}  // namespace portal
