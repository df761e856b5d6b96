// HTTP-level tests of the portal: an in-process server on a free loopback port over a
// freshly seeded database, driven with an HTTP client as a browser would.
#include <gmock/gmock.h>

#include <filesystem>
#include <regex>
#include <thread>

#include "apps/portal/server.h"
#include "reference/seed.h"
#include "reference/test_fixture.h"

namespace portal {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

struct Server {
  std::unique_ptr<PortalServer> server;
  std::thread thread;
  int port = 0;
  Server(const std::string& url, PortalOptions options = {}) {
    ServerConfig config;
    config.db_url = url;
    config.port = 0;
    config.threads = 8;
    config.portal = options;
    server = std::make_unique<PortalServer>(config);
    port = server->bind();
    thread = std::thread([this] { server->listen(); });
  }
  ~Server() {
    server->stop();
    thread.join();
  }
};

// One seeded database for the whole program: seeding costs a few seconds.
class PortalTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    dir_ = std::filesystem::temp_directory_path() / ("kxportal_" + std::to_string(::getpid()));
    std::filesystem::remove_all(dir_);
    std::filesystem::create_directories(dir_);
    url_ = "sqlite3://" + (dir_ / "portal.db").string();
    {
      auto db = kxui::reference::Database::Open(url_);
      kxui::reference::SeedOptions o;
      o.users_per_borg = 6;
      o.parts = 200;
      o.requisitions_per_user = 2;
      kxui::reference::Seed(*db, o);
    }
    server_ = new Server(url_);
  }
  static void TearDownTestSuite() {
    delete server_;
    std::filesystem::remove_all(dir_);
  }

  httplib::Client client() const {
    httplib::Client c("127.0.0.1", server_->port);
    c.set_read_timeout(20, 0);
    return c;
  }
  static std::string cookie(const httplib::Result& r) {
    const std::string set = r->get_header_value("Set-Cookie");
    return set.substr(0, set.find(';'));
  }
  static std::string hidden_csrf(const std::string& html) {
    std::smatch m;
    return std::regex_search(html, m, std::regex("name=\"csrf\" value=\"([0-9a-f]+)\"")) ? m[1].str()
                                                                                         : "";
  }
  // Signs in through the form; the session's cookie header and CSRF token.
  struct Signed {
    httplib::Headers headers;
    std::string csrf;
  };
  Signed sign_in(const std::string& login, int port = 0) const {
    httplib::Client c("127.0.0.1", port ? port : server_->port);
    auto form = c.Get("/login");
    EXPECT_EQ(form->status, 200);
    auto r = c.Post("/login", {{"Cookie", cookie(form)}},
                    httplib::Params{{"csrf", hidden_csrf(form->body)}, {"login", login},
                                    {"password", login + "-pw"}});
    EXPECT_EQ(r->status, 303) << login << ": " << r->body;
    Signed s{{{"Cookie", cookie(r)}}, ""};
    auto home = c.Get("/", s.headers);
    s.csrf = hidden_csrf(home->body);
    return s;
  }
  int32_t query_int(const std::string& sql_text) const {
    auto db = server_->server->database();
    return db->read([&](soci::session& sql) {
      int n = 0;
      sql << sql_text, soci::into(n);
      return n;
    });
  }
  std::string query_text(const std::string& sql_text) const {
    auto db = server_->server->database();
    return db->read([&](soci::session& sql) {
      std::string s;
      sql << sql_text, soci::into(s);
      return s;
    });
  }

  static inline std::filesystem::path dir_;
  static inline std::string url_;
  static inline Server* server_ = nullptr;
};

TEST_F(PortalTest, NothingButSignInIsReadableSignedOut) {
  auto c = client();
  const char* gets[] = {"/", "/reqs", "/req/1", "/req/0/add", "/templates", "/approvals",
                        "/reviews", "/approve/1/1", "/review/1", "/req/1/route", "/delegation",
                        "/pos", "/po/1", "/po/1/costs", "/po/1/reconcile", "/receiving",
                        "/receive/1", "/receipts/1", "/prefs", "/reports", "/report/1",
                        "/attach/3/1/1"};
  for (const char* path : gets) {
    SCOPED_TRACE(path);
    auto r = c.Get(path);
    ASSERT_TRUE(r);
    EXPECT_EQ(r->status, 303);
    EXPECT_EQ(r->get_header_value("Location"), "/login");
    EXPECT_THAT(r->body, Not(HasSubstr("<table")));
  }
  const char* posts[] = {"/req/1/submit", "/req/0/add/fast", "/approve/1/1", "/receive/1", "/prefs"};
  for (const char* path : posts) {
    SCOPED_TRACE(path);
    auto r = c.Post(path, httplib::Params{{"csrf", "x"}});
    EXPECT_EQ(r->status, 303);
  }
  auto login = c.Get("/login");
  EXPECT_EQ(login->status, 200);
  EXPECT_THAT(login->body, HasSubstr("name=\"password\""));
  auto missing = c.Get("/no/such/page");
  EXPECT_EQ(missing->status, 404);
}

TEST_F(PortalTest, SignInCookiesThrottlingAndSignOut) {
  auto c = client();
  auto form = c.Get("/login");
  const std::string pre = cookie(form), token = hidden_csrf(form->body);
  ASSERT_FALSE(token.empty());
  struct Case {
    const char* what;
    std::string csrf, login, password;
    int status;
    const char* message;
  } cases[] = {
      {"no token", "", "u1_2", "u1_2-pw", 403, "security token"},
      {"wrong token", std::string(64, 'a'), "u1_2", "u1_2-pw", 403, "security token"},
      {"wrong password", token, "u1_2", "nope", 401, "not right"},
      {"unknown user", token, "nobody", "x", 401, "not right"},
  };
  for (const Case& k : cases) {
    SCOPED_TRACE(k.what);
    auto r = c.Post("/login", {{"Cookie", pre}},
                    httplib::Params{{"csrf", k.csrf}, {"login", k.login}, {"password", k.password}});
    EXPECT_EQ(r->status, k.status);
    EXPECT_THAT(r->body, HasSubstr(k.message));
    EXPECT_THAT(r->get_header_value("Set-Cookie"), Not(HasSubstr("sid=")));
  }
  // Five failures for one login refuse even the right password for a while.
  for (int i = 0; i < 4; ++i) {
    c.Post("/login", {{"Cookie", pre}},
           httplib::Params{{"csrf", token}, {"login", "U2_3"}, {"password", "bad"}});
  }
  auto fifth = c.Post("/login", {{"Cookie", pre}},
                      httplib::Params{{"csrf", token}, {"login", "u2_3"}, {"password", "bad"}});
  EXPECT_EQ(fifth->status, 401);
  auto throttled = c.Post("/login", {{"Cookie", pre}},
                          httplib::Params{{"csrf", token}, {"login", "u2_3"}, {"password", "u2_3-pw"}});
  EXPECT_EQ(throttled->status, 429);
  EXPECT_THAT(throttled->body, HasSubstr("Too many failed sign-ins"));

  auto ok = c.Post("/login", {{"Cookie", pre}},
                   httplib::Params{{"csrf", token}, {"login", "u1_2"}, {"password", "u1_2-pw"}});
  ASSERT_EQ(ok->status, 303);
  const std::string set = ok->get_header_value("Set-Cookie");
  EXPECT_THAT(set, HasSubstr("HttpOnly"));
  EXPECT_THAT(set, HasSubstr("SameSite=Strict"));
  EXPECT_TRUE(std::regex_search(set, std::regex("^sid=[0-9a-f]{64};")));
  httplib::Headers session{{"Cookie", cookie(ok)}};
  auto home = c.Get("/", session);
  EXPECT_EQ(home->status, 200);
  EXPECT_THAT(home->get_header_value("Content-Security-Policy"), HasSubstr("default-src 'none'"));
  EXPECT_THAT(home->body, HasSubstr("Today is"));
  // Only the hash of the cookie's id is stored.
  EXPECT_EQ(query_int("SELECT COUNT(*) FROM portal_sessions WHERE sid_hash = '" +
                      cookie(ok).substr(4) + "'"),
            0);

  auto refused = c.Post("/logout", session, httplib::Params{{"csrf", "wrong"}});
  EXPECT_EQ(refused->status, 403);
  EXPECT_EQ(c.Get("/", session)->status, 200);
  auto out = c.Post("/logout", session, httplib::Params{{"csrf", hidden_csrf(home->body)}});
  EXPECT_EQ(out->status, 303);
  EXPECT_EQ(c.Get("/", session)->status, 303) << "the session ended";
}

TEST_F(PortalTest, EverySignedInPageRenders) {
  auto me = sign_in("u1_5");
  auto c = client();
  const int32_t req = query_int("SELECT MIN(r.req_id) FROM requisitions r JOIN users u ON "
                                "u.sys_user_id = r.requisitioner_id WHERE u.login_id = 'u1_5'");
  const int32_t po = query_int("SELECT MIN(po_id) FROM purchase_orders");
  const std::string r = std::to_string(req), p = std::to_string(po);
  struct Case {
    std::string path;
    int status;
    const char* marker;
  } cases[] = {
      {"/", 200, "Company news"},
      {"/reqs", 200, "<table"},
      {"/reqs?status=2&sort=ReqID", 200, "Requisitions"},
      {"/reqs?sort=Nonsense", 200, "cannot be sorted by"},
      {"/req/" + r, 200, "History"},
      {"/req/999999", 404, "class=\"error\""},
      {"/req/0/add", 200, "Fast add"},
      {"/req/0/add?q=pen", 200, "Catalog:"},
      {"/templates", 200, "Templates"},
      {"/approvals", 200, "Approvals"},
      {"/reviews", 200, "Reviews"},
      {"/req/" + r + "/route?name=a", 200, "Find a person"},
      {"/delegation", 200, "Delegation"},
      {"/pos", 200, "Purchase orders"},
      {"/po/" + p, 200, "Lines"},
      {"/po/999999", 404, "class=\"error\""},
      {"/po/" + p + "/costs?line=1", 200, "Line 1"},
      {"/receiving", 200, "Receiving"},
      {"/receipts/" + p, 200, "Receipts"},
      {"/prefs", 200, "Time zone"},
      {"/reports", 200, "Download CSV"},
      {"/report/1", 200, "ReqID"},
      {"/report/999", 422, "class=\"error\""},
  };
  for (const Case& k : cases) {
    SCOPED_TRACE(k.path);
    auto res = c.Get(k.path, me.headers);
    ASSERT_TRUE(res);
    EXPECT_EQ(res->status, k.status);
    EXPECT_THAT(res->body, HasSubstr(k.marker));
    EXPECT_THAT(res->body, Not(HasSubstr("terminate called")));
  }
}

TEST_F(PortalTest, FormsWithoutTheSessionsTokenChangeNothing) {
  auto me = sign_in("u1_6");
  auto c = client();
  const int32_t before = query_int("SELECT COUNT(*) FROM requisitions");
  const std::string supplier = std::to_string(query_int("SELECT MIN(supplier_id) FROM parts"));
  const std::string part = query_text("SELECT supplier_part_num FROM parts WHERE supplier_id = " +
                                      supplier + " ORDER BY part_id LIMIT 1");
  for (const std::string& token : {std::string(), std::string("0"), std::string(64, 'f')}) {
    SCOPED_TRACE(token);
    auto r = c.Post("/req/0/add/fast", me.headers,
                    httplib::Params{{"csrf", token}, {"supplier", supplier}, {"part", part}, {"qty", "1"}});
    EXPECT_EQ(r->status, 403);
    EXPECT_THAT(r->body, HasSubstr("security token"));
  }
  // Another session's token is not this session's.
  auto other = sign_in("u1_2");
  auto r = c.Post("/req/0/add/fast", me.headers,
                  httplib::Params{{"csrf", other.csrf}, {"supplier", supplier}, {"part", part}, {"qty", "1"}});
  EXPECT_EQ(r->status, 403);
  EXPECT_EQ(query_int("SELECT COUNT(*) FROM requisitions"), before);
  auto ok = c.Post("/req/0/add/fast", me.headers,
                   httplib::Params{{"csrf", me.csrf}, {"supplier", supplier}, {"part", part}, {"qty", "1"}});
  EXPECT_EQ(ok->status, 303);
  EXPECT_EQ(query_int("SELECT COUNT(*) FROM requisitions"), before + 1);
}

TEST_F(PortalTest, ARequisitionFromFirstItemToReceipt) {
  const std::string requisitioner = "u1_5";
  const std::string approver = query_text(
      "SELECT m.login_id FROM users u JOIN users m ON m.sys_user_id = u.manager_id WHERE "
      "u.login_id = 'u1_5'");
  auto me = sign_in(requisitioner);
  auto c = client();
  // A special request with a price typed in the user's locale; a bad price is refused
  // with the library's message and nothing is stored.
  const int32_t before = query_int("SELECT COUNT(*) FROM requisitions");
  auto bad = c.Post("/req/0/add/special", me.headers,
                    httplib::Params{{"csrf", me.csrf}, {"description", "Desk lamp"},
                                    {"supplier_name", "Lamp shop"}, {"qty", "1"}, {"uom", "EA"},
                                    {"price", "twelve"}, {"currency", "USD"}});
  EXPECT_EQ(bad->status, 422);
  EXPECT_THAT(bad->body, HasSubstr("class=\"error\""));
  EXPECT_THAT(bad->body, HasSubstr("(error "));
  EXPECT_EQ(query_int("SELECT COUNT(*) FROM requisitions"), before);
  auto added = c.Post("/req/0/add/special", me.headers,
                      httplib::Params{{"csrf", me.csrf}, {"description", "Desk lamp"},
                                      {"supplier_name", "Lamp shop"}, {"qty", "2"}, {"uom", "EA"},
                                      {"price", "617.25"}, {"currency", "USD"}});
  ASSERT_EQ(added->status, 303) << added->body;
  const std::string location = added->get_header_value("Location");
  std::smatch m;
  ASSERT_TRUE(std::regex_search(location, m, std::regex("^/req/(\\d+)")));
  const std::string req = m[1].str();

  // A name holding markup is shown as text.
  auto renamed = c.Post("/req/" + req + "/name", me.headers,
                        httplib::Params{{"csrf", me.csrf}, {"name", "<script>alert(1)</script>"}});
  EXPECT_EQ(renamed->status, 303);
  auto page = c.Get("/req/" + req, me.headers);
  EXPECT_THAT(page->body, HasSubstr("&lt;script&gt;alert(1)&lt;/script&gt;"));
  EXPECT_THAT(page->body, Not(HasSubstr("<script>")));
  EXPECT_THAT(page->body, HasSubstr("$1,234.50"));
  auto listed = c.Get("/reqs", me.headers);
  EXPECT_THAT(listed->body, Not(HasSubstr("<script>")));

  auto submitted = c.Post("/req/" + req + "/submit", me.headers, httplib::Params{{"csrf", me.csrf}});
  ASSERT_EQ(submitted->status, 303) << submitted->body;
  EXPECT_EQ(query_int("SELECT status_id FROM requisitions WHERE req_id = " + req), 2);

  // The approver finds it in the work list and approves it.
  auto boss = sign_in(approver);
  auto work = c.Get("/approvals", boss.headers);
  ASSERT_TRUE(std::regex_search(work->body, m, std::regex("/approve/" + req + "/(\\d+)")))
      << work->body;
  const std::string step = m[1].str();
  auto approved = c.Post("/approve/" + req + "/" + step, boss.headers,
                         httplib::Params{{"csrf", boss.csrf}, {"action", "approve"}, {"comments", "ok"}});
  ASSERT_EQ(approved->status, 303) << approved->body;
  auto again = c.Post("/approve/" + req + "/" + step, boss.headers,
                      httplib::Params{{"csrf", boss.csrf}, {"action", "approve"}});
  EXPECT_EQ(again->status, 422) << "a second approval is refused with its message";
  EXPECT_THAT(again->body, HasSubstr("class=\"error\""));
  EXPECT_EQ(query_int("SELECT status_id FROM requisitions WHERE req_id = " + req), 5);

  // The order, then a receipt: a carton count that is no number is refused next to its field.
  page = c.Get("/req/" + req, me.headers);
  ASSERT_TRUE(std::regex_search(page->body, m, std::regex("/po/(\\d+)"))) << page->body;
  const std::string po = m[1].str();
  EXPECT_EQ(c.Get("/po/" + po, me.headers)->status, 200);
  auto form = c.Get("/receive/" + po, me.headers);
  ASSERT_EQ(form->status, 200) << form->body;
  ASSERT_TRUE(std::regex_search(form->body, m, std::regex("name=\"rq(\\d+)\"")));
  const std::string line = m[1].str();
  const int32_t receipts = query_int("SELECT COUNT(*) FROM receipts WHERE po_id = " + po);
  // Every receipt form carries a one-time token; a refused form comes back with a new one.
  auto once = [](const httplib::Result& r) {
    std::smatch t;
    return std::regex_search(r->body, t, std::regex("name=\"once\" value=\"([0-9a-f]+)\""))
               ? t[1].str()
               : std::string();
  };
  auto refused = c.Post("/receive/" + po, me.headers,
                        httplib::Params{{"csrf", me.csrf}, {"once", once(form)}, {"cartons", "two"},
                                        {"rq" + line, "1"}, {"ps" + line, "1"}});
  EXPECT_EQ(refused->status, 422);
  EXPECT_TRUE(std::regex_search(refused->body, std::regex("id=\"cartons-error\">[^<]+<")));
  EXPECT_THAT(refused->body, HasSubstr("value=\"two\"")) << "the typed value stays";
  EXPECT_EQ(query_int("SELECT COUNT(*) FROM receipts WHERE po_id = " + po), receipts);
  auto too_many = c.Post("/receive/" + po, me.headers,
                         httplib::Params{{"csrf", me.csrf}, {"once", once(refused)}, {"cartons", "1"},
                                         {"rq" + line, "x"}});
  EXPECT_EQ(too_many->status, 422);
  EXPECT_THAT(too_many->body, HasSubstr("id=\"line-error\""));
  const httplib::Params good{{"csrf", me.csrf}, {"once", once(too_many)}, {"cartons", "1"},
                             {"rq" + line, "2"}, {"ps" + line, "2"}};
  auto received = c.Post("/receive/" + po, me.headers, good);
  ASSERT_EQ(received->status, 303) << received->body;
  EXPECT_EQ(query_int("SELECT COUNT(*) FROM receipts WHERE po_id = " + po), receipts + 1);

  // The same form sent again, a used token of an earlier form, or none at all: refused, and
  // nothing more is recorded.
  httplib::Params stale = good;
  stale.find("once")->second = once(form);
  httplib::Params bare = good;
  bare.erase("once");
  struct Replay {
    const char* name;
    httplib::Params params;
  } replays[] = {{"the same form twice", good}, {"an earlier form's token", stale},
                 {"no token", bare}};
  for (const Replay& r : replays) {
    SCOPED_TRACE(r.name);
    auto again = c.Post("/receive/" + po, me.headers, r.params);
    EXPECT_EQ(again->status, 409);
    EXPECT_THAT(again->body, HasSubstr("already sent"));
    EXPECT_EQ(query_int("SELECT COUNT(*) FROM receipts WHERE po_id = " + po), receipts + 1);
  }
  // Another session cannot spend this session's token either.
  auto other = sign_in("u1_3");
  auto fresh = c.Get("/receive/" + po, me.headers);
  httplib::Params foreign = good;
  foreign.find("once")->second = once(fresh);
  foreign.find("csrf")->second = other.csrf;
  EXPECT_EQ(c.Post("/receive/" + po, other.headers, foreign)->status, 409);
  auto history = c.Get("/receipts/" + po, me.headers);
  EXPECT_THAT(history->body, HasSubstr("Desk lamp"));
}

TEST_F(PortalTest, RequisitionHeadingsAreTheSortControls) {
  auto me = sign_in(query_text(
      "SELECT u.login_id FROM requisitions r JOIN users u ON u.sys_user_id = r.requisitioner_id "
      "WHERE COALESCE(r.template_type, 0) = 0 AND u.login_id LIKE 'u%' GROUP BY u.login_id "
      "ORDER BY COUNT(*) DESC, u.login_id LIMIT 1"));
  auto c = client();
  // The page's visible text: what people read, without tags and link targets.
  auto visible = [](const std::string& html) {
    return std::regex_replace(html, std::regex("<[^>]*>"), " ");
  };
  auto first_number = [](const std::string& html) {
    std::smatch m;
    return std::regex_search(html, m, std::regex("<td class=\"num\">(\\d+)</td>")) ? std::stoi(m[1].str())
                                                                                    : -1;
  };
  struct Case {
    const char* sort;          // as sent
    const char* heading;       // the heading clicked next
    const char* next;          // where that heading leads
    const char* mark;          // the direction shown after it, "" for none
  } cases[] = {
      {"", "Name", "ReqName", ""},
      {"", "Created", "CreateDate", " ▼"},
      {"ReqName", "Name", "ReqName%20DESC", " ▲"},
      {"ReqName%20DESC", "Name", "ReqName", " ▼"},
      {"ReqID", "No.", "ReqID%20DESC", " ▲"},
      {"CreateDate", "Created", "", " ▲"},
      {"ReqStatusID", "Status", "ReqStatusID%20DESC", " ▲"},
  };
  for (const Case& k : cases) {
    SCOPED_TRACE(k.sort);
    auto page = c.Get(std::string("/reqs?status=&sort=") + k.sort, me.headers);
    ASSERT_EQ(page->status, 200);
    EXPECT_THAT(page->body, HasSubstr(std::string("<a class=\"sort\" href=\"/reqs?status=&amp;sort=") +
                                      k.next + "\">" + k.heading + "</a>" + k.mark + "</th>"));
    const std::string text = visible(page->body);
    for (const char* raw : {"ReqStatusID", "CreateDate", "ReqName", "DESC"}) {
      EXPECT_THAT(text, Not(HasSubstr(raw))) << "people read labels, not column names";
    }
  }
  auto sort_links = visible(c.Get("/reqs", me.headers)->body);
  EXPECT_THAT(sort_links, HasSubstr("Newest first"));
  EXPECT_THAT(sort_links, HasSubstr("Oldest first"));
  const int low = first_number(c.Get("/reqs?sort=ReqID", me.headers)->body);
  const int high = first_number(c.Get("/reqs?sort=ReqID%20DESC", me.headers)->body);
  EXPECT_GT(low, 0);
  EXPECT_LT(low, high) << "the heading's second click reverses the order";
}

// The list's "Submitted" cell of a requisition never submitted is empty: the list itself
// carries the creation date there.
TEST_F(PortalTest, OnlySubmittedRequisitionsShowASubmitDate) {
  auto me = sign_in("u1_5");
  auto c = client();
  // The cells of every body row, as text.
  auto rows = [](const std::string& html) {
    std::vector<std::vector<std::string>> out;
    const std::string body = html.substr(html.find("<tbody>"));
    const std::regex row("<tr>(.*?)</tr>"), cell("<td[^>]*>(.*?)</td>");
    for (std::sregex_iterator r(body.begin(), body.end(), row), end; r != end; ++r) {
      const std::string cells = (*r)[1].str();
      out.emplace_back();
      for (std::sregex_iterator d(cells.begin(), cells.end(), cell); d != end; ++d) {
        out.back().push_back((*d)[1].str());
      }
    }
    return out;
  };
  struct Case {
    const char* status;
    bool dated;
  } cases[] = {{"1", false}, {"2", true}};
  for (const Case& k : cases) {
    SCOPED_TRACE(k.status);
    auto page = c.Get(std::string("/reqs?status=") + k.status, me.headers);
    ASSERT_EQ(page->status, 200);
    ASSERT_THAT(page->body, HasSubstr(">Submitted</a></th>"));
    const auto found = rows(page->body);
    ASSERT_FALSE(found.empty()) << "u1_5 has requisitions of this status";
    for (const auto& cells : found) {
      ASSERT_EQ(cells.size(), 7u);
      EXPECT_FALSE(cells[4].empty()) << "every requisition shows when it was created";
      EXPECT_EQ(cells[5].empty(), !k.dated) << cells[5];
    }
  }
}

TEST_F(PortalTest, PreferencesChangeEveryDateAndAmount) {
  auto me = sign_in("u1_4");
  auto c = client();
  auto before = c.Get("/", me.headers);
  std::smatch m;
  ASSERT_TRUE(std::regex_search(before->body, m, std::regex("Today is (\\d+)/(\\d+)/(\\d{4})")))
      << "US dates first";
  auto bad = c.Post("/prefs", me.headers,
                    httplib::Params{{"csrf", me.csrf}, {"locale", "1031"}, {"zone", "15"},
                                    {"currency", "XXX"}});
  EXPECT_EQ(bad->status, 422);
  auto saved = c.Post("/prefs", me.headers,
                      httplib::Params{{"csrf", me.csrf}, {"locale", "1031"}, {"zone", "15"},
                                      {"currency", "EUR"}});
  ASSERT_EQ(saved->status, 303) << saved->body;
  auto after = c.Get("/", me.headers);
  EXPECT_TRUE(std::regex_search(after->body, std::regex("Today is \\d{1,2}\\.\\d{1,2}\\.\\d{4}")))
      << after->body.substr(0, 3000);
  auto list = c.Get("/pos", me.headers);
  EXPECT_FALSE(std::regex_search(list->body, std::regex("\\$\\d"))) << "no dollar amounts";
}

TEST_F(PortalTest, AttachmentsAndReportsAreDownloads) {
  auto me = sign_in("u1_6");
  auto c = client();
  const std::string req = std::to_string(query_int(
      "SELECT MIN(r.req_id) FROM requisitions r JOIN users u ON u.sys_user_id = "
      "r.requisitioner_id WHERE u.login_id = 'u1_6'"));
  auto upload = [&](const std::string& token, const std::string& name) {
    httplib::MultipartFormDataItems items{{"csrf", token, "", ""},
                                          {"file", "<html><script>x</script>", name, "text/html"}};
    return c.Post("/attach/1/" + req, me.headers, items);
  };
  EXPECT_EQ(upload("", "a.html")->status, 403) << "an upload carries the token too";
  auto refused = upload(me.csrf, "../etc/passwd");
  EXPECT_EQ(refused->status, 422);
  EXPECT_THAT(refused->body, HasSubstr("Invalid file name"));
  ASSERT_EQ(upload(me.csrf, "note \"1\".html")->status, 303);
  auto page = c.Get("/req/" + req, me.headers);
  std::smatch m;
  ASSERT_TRUE(std::regex_search(page->body, m, std::regex("/attach/1/" + req + "/(\\d+)\"")));
  auto file = c.Get("/attach/1/" + req + "/" + m[1].str(), me.headers);
  EXPECT_EQ(file->status, 200);
  EXPECT_EQ(file->body, "<html><script>x</script>");
  EXPECT_EQ(file->get_header_value("Content-Type"), "application/octet-stream");
  EXPECT_EQ(file->get_header_value("Content-Disposition"), "attachment; filename=\"note _1_.html\"");
  // A user of another organisation who knows the ids can neither fetch nor remove the file.
  auto stranger = sign_in("u2_1");
  auto foreign = c.Get("/attach/1/" + req + "/" + m[1].str(), stranger.headers);
  EXPECT_EQ(foreign->status, 403);
  EXPECT_THAT(foreign->body, HasSubstr("another organisation"));
  EXPECT_THAT(foreign->body, Not(HasSubstr("<script>x")));
  auto removed = c.Post("/attach/1/" + req + "/" + m[1].str() + "/delete", stranger.headers,
                        httplib::Params{{"csrf", stranger.csrf}});
  EXPECT_EQ(removed->status, 403);
  EXPECT_EQ(c.Get("/attach/1/" + req + "/" + m[1].str(), me.headers)->status, 200)
      << "the owner still has the file";

  auto csv = c.Get("/report/2?p_FromDate=2000-01-01&p_ToDate=", me.headers);
  EXPECT_EQ(csv->status, 200);
  EXPECT_THAT(csv->get_header_value("Content-Type"), HasSubstr("text/csv"));
  EXPECT_THAT(csv->get_header_value("Content-Disposition"), HasSubstr("attachment"));
  EXPECT_THAT(csv->body, HasSubstr("\r\n"));
  auto missing = c.Get("/report/2?p_FromDate=", me.headers);
  EXPECT_EQ(missing->status, 422) << "a required parameter left empty";
  EXPECT_THAT(missing->body, HasSubstr("class=\"error\""));
}

TEST_F(PortalTest, AnotherOrganisationsDocumentsAreRefusedWithAClearPage) {
  // An order of the first organisation and the requisition it came from.
  const std::string po = std::to_string(query_int(
      "SELECT COALESCE(MIN(o.po_id), 0) FROM purchase_orders o JOIN requisitions r ON "
      "r.req_id = o.req_id WHERE r.borg_id = (SELECT borg_id FROM users WHERE login_id = "
      "'u1_1')"));
  ASSERT_NE(po, "0") << "the seed orders for the first organisation";
  const std::string req =
      std::to_string(query_int("SELECT req_id FROM purchase_orders WHERE po_id = " + po));
  const std::string name = query_text("SELECT req_name FROM requisitions WHERE req_id = " + req);
  const std::string owner_login = query_text(
      "SELECT u.login_id FROM requisitions r JOIN users u ON u.sys_user_id = "
      "r.requisitioner_id WHERE r.req_id = " + req);
  auto stranger = sign_in("u2_5");
  auto c = client();
  const std::string pages[] = {"/req/" + req, "/po/" + po, "/po/" + po + "/reconcile",
                               "/receive/" + po, "/receipts/" + po};
  for (const std::string& path : pages) {
    SCOPED_TRACE(path);
    auto r = c.Get(path, stranger.headers);
    ASSERT_TRUE(r);
    EXPECT_EQ(r->status, 403);
    EXPECT_THAT(r->body, HasSubstr("class=\"error\""));
    EXPECT_THAT(r->body, HasSubstr("belongs to another organisation"));
    EXPECT_THAT(r->body, Not(HasSubstr(name + "<"))) << "nothing of the document shows";
  }
  auto owner = sign_in(owner_login);
  EXPECT_EQ(c.Get("/req/" + req, owner.headers)->status, 200);
  EXPECT_EQ(c.Get("/po/" + po, owner.headers)->status, 200);
  auto missing = c.Get("/req/999999", stranger.headers);
  EXPECT_EQ(missing->status, 404);
  EXPECT_THAT(missing->body, HasSubstr("does not exist"));
}

TEST(PortalHtml, HeadingsReadAsWords) {
  const std::pair<const char*, const char*> cases[] = {
      {"ReqID", "Requisition"},                  // the portal's own label
      {"UIDisplay_SubmitDate", "Submitted"},     // a display column of a known one
      {"UIDisplay_DateLogged", "Date logged"},   // in words
      {"req_id", "Req ID"},                      // a database name
      {"TotalAmtDue", "Total amt due"},
      {"HTMLFileName", "HTML file name"},        // an abbreviation keeps its capitals
      {"PO_Number2", "PO number2"},
      {"x", "X"},
      {"__", "__"},                              // nothing but separators stays as it is
  };
  for (const auto& [column, heading] : cases) {
    SCOPED_TRACE(column);
    EXPECT_EQ(readable_heading(column), heading);
  }
}

TEST(PortalHtml, ReportFilesReadBackAsRows) {
  using Rows = std::vector<std::vector<std::string>>;
  const std::pair<const char*, Rows> cases[] = {
      {"ReqID,ReqName\r\n1,Pens\r\n", {{"ReqID", "ReqName"}, {"1", "Pens"}}},
      {"A,B\r\n\"x, y\",\"say \"\"hi\"\"\"\r\n", {{"A", "B"}, {"x, y", "say \"hi\""}}},
      {"A\r\n\"two\r\nlines\"\r\n", {{"A"}, {"two\r\nlines"}}},
      {"A,B,C\n,,\n", {{"A", "B", "C"}, {"", "", ""}}},
      {"A,B\r\n1,2", {{"A", "B"}, {"1", "2"}}},  // no line end after the last row
      {"", {}},
  };
  for (const auto& [text, rows] : cases) {
    SCOPED_TRACE(text);
    EXPECT_EQ(csv_rows(text), rows);
  }
  const std::string table =
      text_table({{"ReqName", "UIDisplay_x<y>"}, {"<b>bold</b>", "1"}, {"short"}});
  EXPECT_THAT(table, HasSubstr("<th>Requisition name</th><th>X&lt;y&gt;</th>"));
  EXPECT_THAT(table, HasSubstr("<td>&lt;b&gt;bold&lt;/b&gt;</td>"));
  EXPECT_THAT(table, HasSubstr("<tr><td>short</td><td></td></tr>")) << "a short row is padded";
  EXPECT_THAT(text_table({{"A"}}, "None."), HasSubstr("None."));
}

TEST_F(PortalTest, ReportsShowReadableHeadings) {
  auto me = sign_in("u1_5");
  auto c = client();
  auto list = c.Get("/reports", me.headers);
  ASSERT_EQ(list->status, 200);
  EXPECT_THAT(list->body, HasSubstr(">From</label>"));
  EXPECT_THAT(list->body, Not(HasSubstr(">FromDate<")));
  auto shown = c.Get("/report/1?p_StatusID=&show=1", me.headers);
  ASSERT_EQ(shown->status, 200);
  EXPECT_THAT(shown->get_header_value("Content-Type"), HasSubstr("text/html"));
  EXPECT_THAT(shown->body, HasSubstr("<th>Requisition</th><th>Requisition name</th><th>Status</th>"));
  EXPECT_THAT(shown->body, Not(HasSubstr("<th>ReqID")));
  EXPECT_THAT(shown->body, HasSubstr("href=\"/report/1?p_StatusID=\">Download CSV</a>"));
  auto csv = c.Get("/report/1?p_StatusID=", me.headers);
  EXPECT_THAT(csv->get_header_value("Content-Type"), HasSubstr("text/csv"));
  EXPECT_EQ(csv->body.substr(0, 6), "ReqID,") << "the file keeps its column names";
}

TEST_F(PortalTest, RouteAndDelegationActionsShowTheirOutcome) {
  const std::string req = std::to_string(query_int(
      "SELECT MIN(r.req_id) FROM requisitions r JOIN users u ON u.sys_user_id = "
      "r.requisitioner_id WHERE u.borg_id = (SELECT borg_id FROM users WHERE login_id = 'u1_1') "
      "AND r.status_id = 2"));
  auto me = sign_in(query_text("SELECT u.login_id FROM requisitions r JOIN users u ON "
                               "u.sys_user_id = r.requisitioner_id WHERE r.req_id = " + req));
  auto c = client();
  auto search = c.Get("/req/" + req + "/route?name=a", me.headers);
  EXPECT_EQ(search->status, 200);
  const int32_t steps = query_int("SELECT COUNT(*) FROM approval_steps WHERE req_id = " + req);
  // A colleague who neither asked for it nor reviews it yet (the seed adds some reviewers).
  const std::string colleague = query_text(
      "SELECT MIN(u.login_id) FROM users u JOIN requisitions r ON r.req_id = " + req +
      " WHERE u.borg_id = r.borg_id AND u.sys_user_id <> r.requisitioner_id AND u.active = 1 AND "
      "NOT EXISTS (SELECT 1 FROM reviewers v WHERE v.req_id = r.req_id AND v.reviewer_id = "
      "u.sys_user_id)");
  const std::string user = std::to_string(
      query_int("SELECT sys_user_id FROM users WHERE login_id = '" + colleague + "'"));
  const std::string borg = std::to_string(query_int("SELECT borg_id FROM users WHERE login_id = 'u1_1'"));
  struct Case {
    const char* kind;
    int status;
  } cases[] = {{"reviewer", 303}, {"after", 303}, {"nonsense", 400}};
  for (const Case& k : cases) {
    SCOPED_TRACE(k.kind);
    auto r = c.Post("/req/" + req + "/route", me.headers,
                    httplib::Params{{"csrf", me.csrf}, {"kind", k.kind}, {"user", user}, {"borg", borg}});
    EXPECT_EQ(r->status, k.status) << r->body.substr(r->body.find("<main>"));
  }
  EXPECT_EQ(query_int("SELECT COUNT(*) FROM approval_steps WHERE req_id = " + req), steps + 1);
  auto reviews = c.Get("/reviews", sign_in(colleague).headers);
  EXPECT_THAT(reviews->body, HasSubstr("/review/" + req));

  auto bad = c.Post("/delegation", me.headers,
                    httplib::Params{{"csrf", me.csrf}, {"delegate", user}, {"start", "soon"}, {"end", ""}});
  EXPECT_EQ(bad->status, 422);
  EXPECT_THAT(bad->body, HasSubstr("yyyy-mm-dd"));
  auto saved = c.Post("/delegation", me.headers,
                      httplib::Params{{"csrf", me.csrf}, {"delegate", user}, {"start", "2026-01-01"},
                                      {"end", "2026-12-31"}, {"enabled", "1"}});
  EXPECT_EQ(saved->status, 303) << saved->body.substr(saved->body.find("<main>"));
  EXPECT_THAT(c.Get("/delegation", me.headers)->body, HasSubstr("checked"));
}

TEST_F(PortalTest, AnyProcessServesAnySession) {
  auto me = sign_in("u2_5");
  auto c = client();
  ASSERT_EQ(c.Get("/reqs", me.headers)->status, 200);
  // A second portal process on the same database knows the session from its row.
  Server second(url_);
  httplib::Client c2("127.0.0.1", second.port);
  auto there = c2.Get("/reqs", me.headers);
  EXPECT_EQ(there->status, 200);
  EXPECT_THAT(there->body, HasSubstr("u2_5"));
  // A process that keeps few sessions in memory rebuilds the others from their rows.
  PortalOptions small;
  small.max_cached_sessions = 2;
  Server third(url_, small);
  httplib::Client c3("127.0.0.1", third.port);
  const Signed others[] = {sign_in("u3_2"), sign_in("u3_3"), sign_in("u3_4")};
  for (int round = 0; round < 2; ++round) {
    for (const Signed& s : others) EXPECT_EQ(c3.Get("/reqs", s.headers)->status, 200);
  }
  EXPECT_LE(third.server->portal().cached_sessions(), 2u);
  // Signing out there ends the session here too.
  auto out = c2.Post("/logout", me.headers, httplib::Params{{"csrf", me.csrf}});
  EXPECT_EQ(out->status, 303) << out->body;
  EXPECT_EQ(c.Get("/reqs", me.headers)->status, 303);
}

// On PostgreSQL: the server's connections cut (a restart, a dropped connection) between
// requests. Pages read and sign-ins write again on new connections; nothing needs a restart.
TEST(PortalOnPostgres, PagesWorkAgainAfterTheDatabaseConnectionsAreCut) {
  namespace ref = kxui::reference;
  if (!ref::testing::on_postgres()) GTEST_SKIP() << "SQLite has no connection to lose";
  ref::testing::TempDir tmp;
  ref::testing::ScratchDatabase scratch(tmp.path, "portal.db");
  // Named, so that only this portal's connections are cut on a server other tests share.
  const std::string name = "kxportal_cut_" + std::to_string(::getpid());
  const std::string url = scratch.url() +
                          (scratch.url().find('?') == std::string::npos ? " " : "&") +
                          "application_name=" + name;
  {
    auto db = ref::Database::Open(url);
    ref::SeedOptions o;
    o.users_per_borg = 4;
    o.parts = 20;
    o.requisitions_per_user = 1;
    ref::Seed(*db, o);
  }
  Server server(url);
  httplib::Client c("127.0.0.1", server.port);
  c.set_read_timeout(20, 0);
  auto cookie_of = [](const httplib::Result& r) {
    const std::string set = r->get_header_value("Set-Cookie");
    return set.substr(0, set.find(';'));
  };
  auto sign_in = [&](const std::string& login) {
    auto form = c.Get("/login");
    std::smatch m;
    std::regex_search(form->body, m, std::regex("name=\"csrf\" value=\"([0-9a-f]+)\""));
    auto r = c.Post("/login", {{"Cookie", cookie_of(form)}},
                    httplib::Params{{"csrf", m[1].str()}, {"login", login},
                                    {"password", login + "-pw"}});
    EXPECT_EQ(r->status, 303) << login << ": " << r->body;
    return httplib::Headers{{"Cookie", cookie_of(r)}};
  };
  auto cut = [&] {
    soci::session admin("postgresql",
                        ref::parse_connection_string(ref::testing::server_url()).connect);
    int ended = 0;
    // CASE, so that the name is checked before anything is ended.
    admin << "SELECT SUM(CASE WHEN application_name = :n THEN pg_terminate_backend(pid, 10000)::int "
             "ELSE 0 END) FROM pg_stat_activity",
        soci::use(name), soci::into(ended);
    EXPECT_GE(ended, 1);
  };
  const httplib::Headers first = sign_in("u1_2");
  ASSERT_EQ(c.Get("/reqs", first)->status, 200);
  cut();
  auto list = c.Get("/reqs", first);
  ASSERT_TRUE(list);
  EXPECT_EQ(list->status, 200) << list->body;
  EXPECT_THAT(list->body, HasSubstr("u1_2"));
  cut();
  const httplib::Headers second = sign_in("u2_3");
  auto home = c.Get("/", second);
  EXPECT_EQ(home->status, 200);
  EXPECT_THAT(home->body, HasSubstr("Today is"));
}

}  // namespace
}  // namespace portal
