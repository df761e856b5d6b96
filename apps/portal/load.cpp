// kxportal_load: a bounded load test on loopback. Starts a portal over a seeded database
// on a free port, signs in N users (the seed's accounts "u<b>_<i>" / "u<b>_<i>-pw"), and
// lets each browse list pages and record receipts for the given time. Then checks that
// no response was an error and that the database holds exactly one receipt per receipt
// the portal confirmed: none lost, none doubled.
//
//   kxportal_load --db FILE [--users 50] [--seconds 60]
//
// Exit status 0 only when every check passes.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <iostream>
#include <mutex>
#include <regex>
#include <string>
#include <thread>
#include <vector>

#include "apps/portal/server.h"

namespace {

using Clock = std::chrono::steady_clock;

struct Totals {
  std::atomic<int64_t> requests{0}, errors{0}, receipts{0};
  std::mutex mutex;
  std::vector<double> list_ms;  // latency of the requisition list page
  std::vector<std::string> first_errors;
  void error(const std::string& what) {
    ++errors;
    std::lock_guard<std::mutex> lock(mutex);
    if (first_errors.size() < 10) first_errors.push_back(what);
  }
};

std::string cookie_of(const httplib::Result& r) {
  const std::string set = r->get_header_value("Set-Cookie");
  return set.substr(0, set.find(';'));
}

std::string hidden(const std::string& html, const std::string& name) {
  std::smatch m;
  const std::regex re("name=\"" + name + "\" value=\"([^\"]*)\"");
  return std::regex_search(html, m, re) ? m[1].str() : "";
}

void user_loop(int port, int index, Clock::time_point until, Totals& t) {
  httplib::Client cli("127.0.0.1", port);
  cli.set_read_timeout(30, 0);
  auto count = [&](const httplib::Result& r, const std::string& what, int expected) {
    ++t.requests;
    if (!r) return t.error(what + ": no response"), false;
    if (r->status != expected) {
      std::smatch m;
      std::string message;
      if (std::regex_search(r->body, m, std::regex("role=\"alert\">([^<]*)"))) message = m[1].str();
      return t.error(what + ": status " + std::to_string(r->status) + " " + message), false;
    }
    return true;
  };
  // Sign in through the form, as a browser does.
  auto form = cli.Get("/login");
  if (!count(form, "GET /login", 200)) return;
  httplib::Headers pre{{"Cookie", cookie_of(form)}};
  const std::string login = "u" + std::to_string(index % 3 + 1) + "_" + std::to_string(index / 3 % 17 + 1);
  auto signed_in = cli.Post("/login", pre,
                            httplib::Params{{"csrf", hidden(form->body, "csrf")},
                                            {"login", login},
                                            {"password", login + "-pw"}});
  if (!count(signed_in, "POST /login " + login, 303)) return;
  httplib::Headers session{{"Cookie", cookie_of(signed_in)}};

  auto receiving = cli.Get("/receiving", session);
  if (!count(receiving, "GET /receiving", 200)) return;
  std::vector<std::string> orders;
  const std::regex po_link("href=\"/receive/(\\d+)\"");
  for (std::sregex_iterator it(receiving->body.begin(), receiving->body.end(), po_link), end;
       it != end; ++it) {
    orders.push_back((*it)[1].str());
  }
  const char* lists[] = {"/reqs", "/pos", "/approvals", "/receiving", "/reqs?page=1"};
  for (int step = 0; Clock::now() < until; ++step) {
    const auto start = Clock::now();
    auto list = cli.Get(lists[step % 5], session);
    const double ms = std::chrono::duration<double, std::milli>(Clock::now() - start).count();
    if (!count(list, std::string("GET ") + lists[step % 5], 200)) continue;
    if (step % 5 == 0) {
      std::lock_guard<std::mutex> lock(t.mutex);
      t.list_ms.push_back(ms);
    }
    if (step % 3 != 2 || orders.empty()) continue;
    // A receipt: the form, then one packing-slip unit on its first line.
    const std::string po = orders[static_cast<size_t>(step) % orders.size()];
    auto rform = cli.Get("/receive/" + po, session);
    if (!count(rform, "GET /receive/" + po, 200)) continue;
    // Every line's fields, as a browser sends them.
    httplib::Params fields{{"csrf", hidden(rform->body, "csrf")},
                           {"once", hidden(rform->body, "once")},
                           {"cartons", "1"}};
    const size_t form_fields = fields.size();
    const std::regex line_input("name=\"rq(\\d+)\"");
    for (std::sregex_iterator it(rform->body.begin(), rform->body.end(), line_input), end;
         it != end; ++it) {
      const std::string line = (*it)[1].str();
      const bool first = fields.size() == form_fields;
      fields.emplace("rq" + line, "0");
      fields.emplace("ps" + line, first ? "1" : "0");
      fields.emplace("cm" + line, first ? "load test" : "");
    }
    if (fields.size() == form_fields) continue;
    auto posted = cli.Post("/receive/" + po, session, fields);
    if (count(posted, "POST /receive/" + po, 303)) ++t.receipts;
  }
}

int64_t stored_receipts(kxui::reference::Database& db) {
  return db.read([](soci::session& sql) {
    int n = 0;
    sql << "SELECT COUNT(*) FROM receipts", soci::into(n);
    return static_cast<int64_t>(n);
  });
}

}  // namespace

int main(int argc, char** argv) {
  std::string db;
  int users = 50, seconds = 60;
  for (int i = 1; i + 1 < argc; i += 2) {
    const std::string arg = argv[i], value = argv[i + 1];
    if (arg == "--db") db = value;
    else if (arg == "--users") users = std::stoi(value);
    else if (arg == "--seconds") seconds = std::stoi(value);
  }
  if (db.empty()) {
    std::cerr << "usage: kxportal_load --db FILE [--users N] [--seconds N]\n";
    return 2;
  }
  portal::ServerConfig config;
  config.db_url = db;
  config.port = 0;
  config.threads = users + 4;
  portal::PortalServer server(config);
  const int port = server.bind();
  if (port <= 0) return 1;
  std::thread serving([&] { server.listen(); });
  const int64_t before = stored_receipts(*server.database());

  Totals t;
  const auto until = Clock::now() + std::chrono::seconds(seconds);
  std::vector<std::thread> threads;
  for (int i = 0; i < users; ++i) threads.emplace_back(user_loop, port, i, until, std::ref(t));
  for (auto& th : threads) th.join();
  server.stop();
  serving.join();

  const int64_t stored = stored_receipts(*server.database()) - before;
  std::sort(t.list_ms.begin(), t.list_ms.end());
  auto pct = [&](double p) {
    if (t.list_ms.empty()) return 0.0;
    return t.list_ms[std::min(t.list_ms.size() - 1, static_cast<size_t>(p * t.list_ms.size()))];
  };
  std::cout << "users " << users << ", " << seconds << " s: " << t.requests << " requests ("
            << t.requests / std::max(1, seconds) << "/s), " << t.errors << " errors\n"
            << "receipts confirmed " << t.receipts << ", stored " << stored << "\n"
            << "requisition list page latency: p50 " << pct(0.50) << " ms, p99 " << pct(0.99)
            << " ms over " << t.list_ms.size() << " requests\n";
  for (const std::string& e : t.first_errors) std::cout << "  error: " << e << "\n";
  const bool ok = t.errors == 0 && stored == t.receipts && t.receipts > 0;
  std::cout << (ok ? "PASS" : "FAIL") << "\n";
  return ok ? 0 : 1;
}
