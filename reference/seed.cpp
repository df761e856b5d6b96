#include "reference/seed.h"

#include <array>
#include <memory>
#include <random>
#include <vector>

#include "reference/errors.h"
#include "reference/req_store.h"
#include "reference/requisition.h"
#include "reference/route.h"
#include "reference/seed_parts.h"
#include "reference/smart_forms.h"
#include "reference/services.h"
#include "reference/users.h"
#include "reference/workflow.h"

namespace kxui::reference {

namespace {

struct BorgPlan {
  const char* name;
  const char* currency;
  double tax;
  int32_t locale;
  std::array<int32_t, 3> zones;
  std::array<const char*, 6> first_names;
  std::array<const char*, 6> last_names;
};

const BorgPlan kBorgs[] = {
    {"Acme Corporation", "USD", 0.08, 1033, {8, 6, 3},
     {"James", "Mary", "Robert", "Linda", "Michael", "Susan"},
     {"Smith", "Johnson", "Brown", "Miller", "Davis", "Wilson"}},
    {"Berg Maschinenbau GmbH", "EUR", 0.19, 1031, {17, 17, 21},
     {"Lukas", "Anna", "Jonas", "Lea", "Felix", "Marie"},
     {"Müller", "Schmidt", "Schneider", "Fischer", "Weber", "Becker"}},
    {"Chêne Industries SA", "EUR", 0.20, 1036, {18, 18, 16},
     {"Louis", "Camille", "Hugo", "Chloé", "Jules", "Léa"},
     {"Martin", "Bernard", "Dubois", "Durand", "Lefèvre", "Moreau"}},
};

const char* const kNouns[] = {"pen", "notebook", "stapler", "toner", "cable", "monitor", "chair",
                              "drill", "glove", "helmet", "bolt", "valve", "sensor", "filter",
                              "battery", "lamp", "label", "folder", "adapter", "switch"};
const char* const kAdjectives[] = {"Blue", "Heavy-duty", "Compact", "Premium", "Recycled",
                                   "Industrial", "Wireless", "Stainless", "Ergonomic", "Basic"};
const char* const kUoms[] = {"EA", "BX", "PK", "CS"};

struct Seeder {
  Database& db;
  const SeedOptions& opt;
  DatabasePtr shared;  // the business objects need shared ownership; see Seed()
  std::mt19937 rng;
  SeedCounts counts;
  std::vector<int32_t> borgs, leaves, parts, suppliers;
  std::vector<std::vector<int32_t>> staff;  // per organisation: requisitioners
  std::vector<int32_t> heads;               // per organisation: the head
  int32_t bench_user_id = 0;

  int pick(int n) { return std::uniform_int_distribution<int>(0, n - 1)(rng); }

  void reference_data() {
    db.write([&](soci::session& sql) {
      const std::pair<const char*, double> rates[] = {
          {"USD", 1.0}, {"EUR", 0.92}, {"GBP", 0.79}, {"CHF", 0.88}};
      for (const auto& [code, rate] : rates) {
        const std::string c = code;
        sql << "INSERT INTO currency_rates VALUES (:c, '2000-01-01 00:00:00', :r)", soci::use(c),
            soci::use(rate);
      }
      for (const BorgPlan& b : kBorgs) {
        int id = 0;
        const std::string name = b.name, currency = b.currency;
        sql << "INSERT INTO borgs (name, currency_code, tax_rate) VALUES (:n, :c, :t) "
               "RETURNING borg_id",
            soci::use(name), soci::use(currency), soci::use(b.tax), soci::into(id);
        borgs.push_back(id);
      }
    });
    counts.borgs = static_cast<int32_t>(borgs.size());
    put_setting(db, "Dunmere", "Paging", "Page Size", "20");
    put_setting(db, "Dunmere", "UI", "DateFormat", "1");
  }

  void users() {
    staff.resize(borgs.size());
    for (size_t b = 0; b < borgs.size(); ++b) {
      const BorgPlan& plan = kBorgs[b];
      // One head, three managers under the head, the rest under the managers.
      std::vector<int32_t> managers;
      int32_t head = 0;
      for (int i = 0; i < opt.users_per_borg; ++i) {
        NewUser u;
        u.borg_id = borgs[b];
        u.full_name = std::string(plan.first_names[i % 6]) + " " + plan.last_names[(i / 6 + i) % 6];
        u.login_id = "u" + std::to_string(b + 1) + "_" + std::to_string(i + 1);
        u.email = u.login_id + "@example.com";
        u.password = u.login_id + "-pw";
        u.locale_id = plan.locale;
        u.time_zone_id = plan.zones[i % 3];
        u.currency_code = plan.currency;
        if (i == 0) {
          u.approval_limit = Currency::from_double(1000000);
        } else if (i <= 3) {
          u.manager_id = head;
          u.approval_limit = Currency::from_double(5000);
        } else {
          u.manager_id = managers[i % managers.size()];
          u.approval_limit = Currency::from_double(i % 4 == 0 ? 500 : 0);
        }
        const int32_t id = AddUser(db, u, HashCost::kMinimum);
        if (i == 0) {
          head = id;
          heads.push_back(id);
        }
        else if (i <= 3) managers.push_back(id);
        else staff[b].push_back(id);
        ++counts.users;
      }
    }
  }

  void catalog() {
    db.write([&](soci::session& sql) {
      for (int s = 0; s < 20; ++s) {
        int id = 0;
        const std::string name = "Supplier " + std::string(1, char('A' + s)) + " Ltd";
        const std::string currency = s % 3 == 0 ? "EUR" : "USD";
        sql << "INSERT INTO suppliers (name, currency_code) VALUES (:n, :c) RETURNING supplier_id",
            soci::use(name), soci::use(currency), soci::into(id);
        suppliers.push_back(id);
      }
      for (int m = 0; m < 30; ++m) {
        const std::string name = "Maker " + std::to_string(m + 1);
        sql << "INSERT INTO manufacturers (name) VALUES (:n)", soci::use(name);
      }
      // 8 x 5 x 4 commodities; parts hang on the leaves.
      for (int a = 0; a < 8; ++a) {
        int top = 0;
        const std::string code = "C" + std::to_string(a + 1);
        const std::string name = std::string(kAdjectives[a]) + " goods";
        sql << "INSERT INTO commodities (parent_id, code, name) VALUES (NULL, :c, :n) "
               "RETURNING commodity_id",
            soci::use(code), soci::use(name), soci::into(top);
        ++counts.commodities;
        for (int b = 0; b < 5; ++b) {
          int mid = 0;
          const std::string c2 = code + "." + std::to_string(b + 1);
          const std::string n2 = std::string(kNouns[(a * 5 + b) % 20]) + "s";
          sql << "INSERT INTO commodities (parent_id, code, name) VALUES (:p, :c, :n) "
                 "RETURNING commodity_id",
              soci::use(top), soci::use(c2), soci::use(n2), soci::into(mid);
          ++counts.commodities;
          for (int c = 0; c < 4; ++c) {
            int leaf = 0;
            const std::string c3 = c2 + "." + std::to_string(c + 1);
            const std::string n3 = n2 + " " + std::string(1, char('A' + c));
            sql << "INSERT INTO commodities (parent_id, code, name) VALUES (:p, :c, :n) "
                   "RETURNING commodity_id",
                soci::use(mid), soci::use(c3), soci::use(n3), soci::into(leaf);
            leaves.push_back(leaf);
            ++counts.commodities;
          }
        }
      }
      int part = 0, supplier = 0, mfr = 0, commodity = 0, lead = 0;
      long long price = 0;
      std::string num, uom, currency, desc, long_desc, mfr_num;
      soci::statement insert =
          (sql.prepare << "INSERT INTO parts (supplier_id, supplier_part_num, mfr_id, "
                          "mfr_part_num, commodity_id, uom_id, unit_price, currency_code, "
                          "description, long_desc, lead_days) VALUES (:s, :n, :m, :mn, :c, :u, "
                          ":p, :cc, :d, :ld, :l) RETURNING part_id",
           soci::use(supplier), soci::use(num), soci::use(mfr), soci::use(mfr_num),
           soci::use(commodity), soci::use(uom), soci::use(price), soci::use(currency),
           soci::use(desc), soci::use(long_desc), soci::use(lead), soci::into(part));
      for (int p = 0; p < opt.parts; ++p) {
        const int s = pick(static_cast<int>(suppliers.size()));
        supplier = suppliers[s];
        num = "SP-" + std::to_string(100000 + p);
        mfr = 1 + pick(30);
        mfr_num = "M" + std::to_string(mfr) + "-" + std::to_string(p % 700);
        commodity = leaves[pick(static_cast<int>(leaves.size()))];
        uom = kUoms[pick(4)];
        price = (50 + pick(50000)) * 100;
        currency = s % 3 == 0 ? "EUR" : "USD";
        desc = std::string(kAdjectives[pick(10)]) + " " + kNouns[pick(20)] + " " +
               std::to_string(p % 97);
        long_desc = desc + ", catalog item " + num;
        lead = pick(30);
        insert.execute(true);
        parts.push_back(part);
        if (p % 5 == 0) {
          const std::string de = "Artikel " + num, fr = "Article " + num;
          sql << "INSERT INTO part_texts VALUES (:p, 'de', :d)", soci::use(part), soci::use(de);
          sql << "INSERT INTO part_texts VALUES (:p, 'fr', :d)", soci::use(part), soci::use(fr);
        }
      }
      counts.parts = static_cast<int32_t>(parts.size());
    });
  }

  std::shared_ptr<BasicSession> session_of(int32_t user, int32_t borg) {
    auto s = std::make_shared<BasicSession>();
    s->sys_user_id = user;
    s->borg_id = borg;
    s->value = user;
    return s;
  }

  [[noreturn]] static void raise(ErrorSource& obj) {
    auto e = obj.GetError();
    throw Failure(e->Number(), e->Source(), e->Description());
  }

  // Acts on the pending steps until the requisition reaches `approve_stages` stages, or
  // is rejected at the first when `reject`.
  void approve(int32_t req_id, int32_t borg, int stages, bool reject) {
    RefWorkflow wf(shared);
    Variant cd;
    for (int done = 0; done < stages; ++done) {
      std::vector<std::pair<int, int>> pending;
      db.read([&](soci::session& sql) {
        soci::rowset<soci::row> rows =
            (sql.prepare << "SELECT seq_num, approver_id FROM approval_steps WHERE req_id = :r "
                            "AND status_id = :p ORDER BY seq_num",
             soci::use(req_id), soci::use(step_status::kPending));
        for (const soci::row& r : rows) pending.emplace_back(r.get<int>(0), r.get<int>(1));
      });
      if (pending.empty()) return;
      for (const auto& [seq, approver] : pending) {
        auto s = session_of(approver, borg);
        const bool ok = reject ? wf.Reject(s, req_id, seq, "Over budget", cd)
                               : wf.Approve(s, req_id, seq, "", cd);
        if (!ok) raise(wf);
        if (reject) return;
      }
    }
  }

  void requisitions() {
    for (size_t b = 0; b < borgs.size(); ++b) {
      for (size_t u = 0; u < staff[b].size(); ++u) {
        for (int r = 0; r < opt.requisitions_per_user; ++r) {
          one_requisition(staff[b][u], borgs[b], static_cast<int>(u + r));
          if (opt.advance_clock) opt.advance_clock(3600 + pick(6 * 3600));
        }
      }
    }
  }

  void one_requisition(int32_t user, int32_t borg, int variant) {
    auto s = session_of(user, borg);
    RefRequisition req(shared);
    Variant cd;
    int32_t req_id = 0;
    const int lines = 1 + pick(4);
    for (int l = 0; l < lines; ++l) {
      const int32_t part = parts[pick(static_cast<int>(parts.size()))];
      auto item = std::static_pointer_cast<RefLineItem>(req.NewLineItem());
      db.read([&](soci::session& sql) {
        sql << "SELECT supplier_id, supplier_part_num FROM parts WHERE part_id = :p",
            soci::use(part), soci::into(item->supplier_id), soci::into(item->supplier_part_num);
      });
      item->req_id = req_id;
      item->qty = Variant(static_cast<double>(1 + pick(10)));
      item->currency_code = "USD";
      if (!req.CommitItem(s, "", cd) || !req.CompleteItem(s, item->req_id, item->line_num, cd)) {
        raise(req);
      }
      req_id = item->req_id;
    }
    if (variant % 5 == 1) special_request(s, req, req_id, borg);
    db.write([&](soci::session& sql) {
      const std::string name = "Requisition " + std::to_string(req_id);
      sql << "UPDATE requisitions SET req_name = :n WHERE req_id = :r", soci::use(name),
          soci::use(req_id);
    });
    ++counts.requisitions;
    // Statuses in turn: open, submitted (waiting), approved, rejected, withdrawn,
    // cancelled, and a template now and then.
    int32_t orders = 0;
    RefWorkflow wf(shared);
    switch (variant % 7) {
      case 0: break;
      case 6:
        if (!req.MarkAsTemplate(s, req_id, 1 + variant % 2, cd)) raise(req);
        break;
      default:
        if (!req.SubmitRequisition(s, req_id, false, orders, cd)) raise(req);
        // Some waiting requisitions are also shown to the organisation's head for review.
        if (variant % 7 == 1 && variant % 2 == 1 &&
            !wf.AddReviewer(s, req_id, head_of(borg), borg, cd)) {
          raise(wf);
        }
        if (variant % 7 == 2) approve(req_id, borg, 10, false);
        if (variant % 7 == 3) approve(req_id, borg, 1, true);
        if (variant % 7 == 4 && !wf.Cancel(s, req_id, cd)) raise(wf);
        if (variant % 7 == 5 && !req.CancelRequisition(s, req_id, cd)) raise(req);
    }
  }

  int32_t head_of(int32_t borg) const {
    for (size_t b = 0; b < borgs.size(); ++b) {
      if (borgs[b] == borg) return heads[b];
    }
    return 0;
  }

  // A line from outside the catalogue, with the values of its smart form.
  void special_request(const std::shared_ptr<BasicSession>& s, RefRequisition& req,
                       int32_t req_id, int32_t borg) {
    Variant cd;
    auto item = std::static_pointer_cast<RefLineItem>(req.NewLineItem());
    const int n = pick(1000);
    item->req_id = req_id;
    item->supplier_name = "Local Print Shop " + std::to_string(1 + n % 3);
    item->supplier_part_num = "SR-" + std::to_string(n);
    item->qty = Variant(static_cast<double>(100 * (1 + n % 5)));
    item->uom_id = "EA";
    item->commodity_id = leaves[static_cast<size_t>(n) % leaves.size()];
    item->commodity_alias = "Printing";
    item->unit_price = Currency::from_double(0.25 + (n % 20) / 10.0);
    item->currency_code = "USD";
    item->part_desc = "Printed business cards, design " + std::to_string(n);
    if (!req.CommitSpecialRequestItem(s, "", cd) ||
        !req.CompleteItem(s, item->req_id, item->line_num, cd)) {
      raise(req);
    }
    RefSFormReqItem form(shared);
    const Variant names(Array::of({Variant(std::string("Justification")),
                                   Variant(std::string("QuoteNumber"))}));
    const Variant values(Array::of({Variant(std::string("New staff in the office")),
                                    Variant("Q-" + std::to_string(borg) + "-" + std::to_string(n))}));
    if (!form.SaveReqLineValues(s, item->req_id, item->line_num, item->smart_form_id, names,
                                values, cd)) {
      raise(form);
    }
  }

  void favourites_and_news() {
    db.write([&](soci::session& sql) {
      for (const auto& people : staff) {
        for (int32_t user : people) {
          for (int f = 0; f < 5; ++f) {
            const int32_t part = parts[(user * 31 + f * 97) % parts.size()];
            sql << "INSERT INTO favorites (sys_user_id, part_id) VALUES (:u, :p) "
                   "ON CONFLICT (sys_user_id, part_id) DO NOTHING",
                soci::use(user), soci::use(part);
          }
        }
      }
      const std::string posted = date_text(db.now());
      const std::array<std::pair<const char*, const char*>, 3> news = {{
          {"en-US", "New catalog prices are in effect"},
          {"de-DE", "Neue Katalogpreise sind gültig"},
          {"fr-FR", "Les nouveaux prix du catalogue sont en vigueur"},
      }};
      for (size_t b = 0; b < borgs.size(); ++b) {
        for (int n = 0; n < 4; ++n) {
          const std::string locale = news[b].first;
          const std::string headline = std::string(news[b].second) + " (" + std::to_string(n + 1) + ")";
          const std::string body = headline + ".";
          sql << "INSERT INTO news (borg_id, locale_name, posted, headline, body) VALUES "
                 "(:b, :l, :p, :h, :t)",
              soci::use(borgs[b]), soci::use(locale), soci::use(posted), soci::use(headline),
              soci::use(body);
          ++counts.news;
        }
      }
    });
  }

  // The order side: customer names per organisation, and the simulated
  // supplier's answers (prices 5% under the catalogue, some stock, half of the orders
  // with a status).
  void order_side() {
    db.write([&](soci::session& sql) {
      sql << "INSERT INTO borg_accounts (borg_id, ebo_id, customer_name) "
             "SELECT borg_id, 0, 'Customer ' || name FROM borgs";
      sql << "INSERT INTO sim_part_answers (supplier_id, supplier_part_num, "
             "supplier_part_num_ext, unit_price, available_qty) SELECT supplier_id, "
             "supplier_part_num, supplier_part_num_ext, unit_price - unit_price / 20, "
             "(part_id * 7) % 50 FROM parts";
      sql << "INSERT INTO sim_order_answers (po_id, status_code) SELECT po_id, CASE po_id % 3 "
             "WHEN 0 THEN 'ACK' WHEN 1 THEN 'SHIPPED' ELSE 'DELIVERED' END FROM purchase_orders "
             "WHERE po_id % 2 = 0";
    });
  }

  // The benchmark user, added when a benchmark asks for rows of its own.
  int32_t bench_user() {
    if (bench_user_id == 0) {
      NewUser u;
      u.borg_id = borgs[0];
      u.login_id = "bench";
      u.full_name = "Bench Marker";
      u.password = "bench-pw";
      bench_user_id = AddUser(db, u, HashCost::kMinimum);
    }
    return bench_user_id;
  }

  // The benchmark user's requisitions, written in bulk through statements prepared once.
  void bench_rows() {
    if (opt.bench_rows <= 0) return;
    const int32_t user = bench_user();
    const int32_t statuses[] = {1, 2, 3, 4, 5, 7};
    db.write([&](soci::session& sql) {
      int req_id = 0, status = 0, part = 0, supplier = 0, borg = borgs[0];
      long long price = 0;
      double qty = 1;
      std::string name, created, num, uom, desc;
      // An open requisition was never submitted: it has no submit date.
      soci::indicator submitted = soci::i_ok;
      soci::statement header =
          (sql.prepare << "INSERT INTO requisitions (req_name, status_id, requisitioner_id, "
                          "borg_id, currency_code, create_date, submit_date) VALUES (:n, :s, :u, "
                          ":b, 'USD', :d, :d2) RETURNING req_id",
           soci::use(name), soci::use(status), soci::use(user), soci::use(borg),
           soci::use(created), soci::use(created, submitted), soci::into(req_id));
      soci::statement line =
          (sql.prepare << "INSERT INTO req_lines (req_id, line_num, part_id, supplier_id, "
                          "supplier_part_num, qty, uom_id, unit_price, currency_code, part_desc, "
                          "is_special, complete) VALUES (:r, 1, :p, :s, :n, :q, :u, :pr, 'USD', "
                          ":d, 0, 1)",
           soci::use(req_id), soci::use(part), soci::use(supplier), soci::use(num),
           soci::use(qty), soci::use(uom), soci::use(price), soci::use(desc));
      const int64_t start = db.now().seconds() - int64_t{opt.bench_rows} * 60;
      for (int32_t i = 0; i < opt.bench_rows; ++i) {
        name = "Bench requisition " + std::to_string(i + 1);
        status = statuses[i % 6];
        created = date_text(Date::from_seconds(start + int64_t{i} * 60));
        submitted = status == req_status::kOpen ? soci::i_null : soci::i_ok;
        header.execute(true);
        const int32_t p = parts[i % parts.size()];
        sql << "SELECT part_id, supplier_id, supplier_part_num, uom_id, unit_price, description "
               "FROM parts WHERE part_id = :p",
            soci::use(p), soci::into(part), soci::into(supplier), soci::into(num),
            soci::into(uom), soci::into(price), soci::into(desc);
        qty = 1 + i % 5;
        line.execute(true);
      }
    });
    counts.requisitions += opt.bench_rows;
  }

  // The benchmark user's orders: an approved requisition each, ordered from one of a few
  // suppliers, in every order status in turn, created a minute apart.
  void bench_orders() {
    if (opt.bench_orders <= 0) return;
    const int32_t user = bench_user();
    const int32_t statuses[] = {1, 2, 3, 4, 5, 6, 7};
    const char* const suppliers[] = {"Office Supplies Inc", "Paper Mill", "Desk Works"};
    db.write([&](soci::session& sql) {
      int req_id = 0, po_id = 0, status = 0, borg = borgs[0];
      const int approved = req_status::kApproved;
      long long price = 0;
      double qty = 1;
      std::string name, created, supplier, desc;
      soci::statement req =
          (sql.prepare << "INSERT INTO requisitions (req_name, status_id, requisitioner_id, "
                          "borg_id, currency_code, create_date, submit_date) VALUES (:n, :s, :u, "
                          ":b, 'USD', :d, :d2) RETURNING req_id",
           soci::use(name), soci::use(approved), soci::use(user), soci::use(borg),
           soci::use(created), soci::use(created), soci::into(req_id));
      soci::statement order =
          (sql.prepare << "INSERT INTO purchase_orders (req_id, supplier_name, status_id, "
                          "create_date, currency_code) VALUES (:r, :n, :s, :d, 'USD') "
                          "RETURNING po_id",
           soci::use(req_id), soci::use(supplier), soci::use(status), soci::use(created),
           soci::into(po_id));
      soci::statement line =
          (sql.prepare << "INSERT INTO po_lines (po_id, line_num, req_line_num, description, "
                          "qty, unit_price, currency_code) VALUES (:p, 1, 1, :d, :q, :pr, 'USD')",
           soci::use(po_id), soci::use(desc), soci::use(qty), soci::use(price));
      const int64_t start = db.now().seconds() - int64_t{opt.bench_orders} * 60;
      for (int32_t i = 0; i < opt.bench_orders; ++i) {
        name = "Bench order " + std::to_string(i + 1);
        created = date_text(Date::from_seconds(start + int64_t{i} * 60));
        req.execute(true);
        supplier = suppliers[i % 3];
        status = statuses[i % 7];
        order.execute(true);
        desc = "Bench part " + std::to_string(i % 50);
        qty = 1 + i % 5;
        price = 10000 + (i % 50) * 2500;
        line.execute(true);
      }
    });
    counts.requisitions += opt.bench_orders;
  }
};

}  // namespace

SeedCounts Seed(Database& db, const SeedOptions& options) {
  int existing = 0;
  db.read([&](soci::session& sql) { sql << "SELECT COUNT(*) FROM borgs", soci::into(existing); });
  if (existing > 0) refuse(Refusal::kInvalidArgument, "The database already holds data.");
  // Business objects hold their database shared; this one outlives them all.
  Seeder s{db, options, DatabasePtr(&db, [](Database*) {}), std::mt19937(options.random_seed), {},
           {}, {}, {}, {}, {}, {}, 0};
  s.reference_data();
  s.users();
  s.catalog();
  seed_parts::Accounts(db);
  s.requisitions();
  s.favourites_and_news();
  s.order_side();
  seed_parts::Documents(db);
  s.bench_rows();
  s.bench_orders();
  db.read([&](soci::session& sql) {
    sql << "SELECT COUNT(*) FROM purchase_orders", soci::into(s.counts.orders);
  });
  return s.counts;
}

}  // namespace kxui::reference
