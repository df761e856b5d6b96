// Attachments and reports through the façades over a fresh database file.
#include <gmock/gmock.h>

#include "kxui/attach/ui_attach.h"
#include "kxui/report/ui_report.h"
#include "kxui/requisition/ui_req.h"
#include "reference/errors.h"
#include "reference/test_fixture.h"

namespace kxui::reference {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using testing::make_fixture;

std::vector<std::string> column(const RecordsetPtr& rs, const char* name) {
  std::vector<std::string> out;
  if (!rs || rs->RecordCount() == 0) return out;
  for (rs->MoveFirst(); !rs->IsEOF(); rs->MoveNext()) out.push_back((*rs)[name].Value().to_string());
  return out;
}

// A requisition of alice's with one line of three pens; its identifier.
int32_t new_requisition(testing::Fixture& f) {
  UIReq req(f.runtime);
  Variant req_id(int32_t{0}), line, form;
  EXPECT_TRUE(req.AddItemFastAdd(f.session(f.ids.alice), req_id, f.ids.supplier, "P-100", "",
                                 "3", "EA", line, form))
      << req.Error()->Description();
  return req_id.to_int32();
}

int32_t new_order(testing::Fixture& f, int32_t req_id, const std::string& created) {
  return f.db->write([&](soci::session& sql) {
    int po = 0;
    sql << "INSERT INTO purchase_orders (req_id, supplier_id, supplier_name, status_id, "
           "create_date, currency_code) VALUES (:r, :s, 'Office Supplies Inc', 1, :d, 'USD') "
           "RETURNING po_id",
        soci::use(req_id), soci::use(f.ids.supplier), soci::use(created), soci::into(po);
    sql << "INSERT INTO po_lines (po_id, line_num, req_line_num, part_id, description, qty, "
           "unit_price, currency_code) VALUES (:p, 1, 1, :part, 'Blue ballpoint pen', 4, 25000, "
           "'USD')",
        soci::use(po), soci::use(f.ids.pen);
    sql << "INSERT INTO po_lines (po_id, line_num, req_line_num, description, qty, unit_price, "
           "currency_code) VALUES (:p, 2, 2, 'Delivery', 1, 10000, 'USD')",
        soci::use(po);
    return po;
  });
}

TEST(Attachments, FilesAreAddedListedReadAndDeletedPerOwner) {
  auto f = make_fixture();
  const int32_t rid = new_requisition(*f);
  const int32_t po = new_order(*f, rid, "2026-03-02 09:00:00");
  auto alice = f->session(f->ids.alice);
  UIAttach attach(f->runtime);
  std::string bytes;  // every byte value, kept byte for byte
  for (int b = 0; b < 256; ++b) bytes.push_back(static_cast<char>(b));

  struct Case {
    const char* name;
    int32_t option, id, line;
  } cases[] = {{"requisition", 1, rid, 0}, {"requisition line", 2, rid, 1},
               {"order", 3, po, 0},        {"order line", 4, po, 1}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Variant new_id;
    ASSERT_TRUE(attach.AddAttachment(alice, c.option, c.id, c.line, "quote.pdf", bytes, new_id))
        << attach.Error()->Description();
    RecordsetPtr list = attach.GetAttachmentListRs(alice, c.option, c.id, c.line);
    ASSERT_TRUE(list) << attach.Error()->Description();
    EXPECT_THAT(column(list, "AttachmentID"), ElementsAre(new_id.to_string()))
        << "each owner sees only its own file";
    EXPECT_THAT(column(list, "FileSize"), ElementsAre("256"));
    EXPECT_THAT(column(list, "DateAttached"), ElementsAre(HasSubstr("2026")));

    Variant name, content;
    ASSERT_TRUE(attach.GetAttachment(alice, c.option, c.id, c.line, new_id.to_int32(), name,
                                     content))
        << attach.Error()->Description();
    EXPECT_EQ(name.to_string(), "quote.pdf");
    EXPECT_EQ(content.to_string(), bytes);
    ASSERT_TRUE(attach.DeleteAttachment(alice, c.option, c.id, c.line, new_id.to_int32()));
    EXPECT_TRUE(column(attach.GetAttachmentListRs(alice, c.option, c.id, c.line), "FileName")
                    .empty());
    EXPECT_FALSE(attach.GetAttachment(alice, c.option, c.id, c.line, new_id.to_int32(), name,
                                      content));
    EXPECT_EQ(attach.Error()->Number(), error_number(Refusal::kNotFound));
  }
}

TEST(Attachments, RefusalsStoreNothing) {
  auto f = make_fixture();
  const int32_t rid = new_requisition(*f);
  auto alice = f->session(f->ids.alice);
  UIAttach attach(f->runtime);
  struct Case {
    const char* name;
    int32_t option, id, line;
    std::string file;
    int32_t error;
  } cases[] = {
      {"a path in the name, refused before the tier", 1, rid, 0, "../etc/passwd",
       err::kObjectErrorBase + msg::kInvalidAttachmentName.number},
      {"an unknown requisition", 1, rid + 100, 0, "a.txt", error_number(Refusal::kNotFound)},
      {"a line the requisition lacks", 2, rid, 7, "a.txt", error_number(Refusal::kNotFound)},
      {"an unknown order", 3, 4242, 0, "a.txt", error_number(Refusal::kNotFound)},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Variant new_id;
    EXPECT_FALSE(attach.AddAttachment(alice, c.option, c.id, c.line, c.file, "x", new_id));
    EXPECT_EQ(attach.Error()->Number(), c.error);
  }
  const int stored = f->db->read([](soci::session& sql) {
    int n = -1;
    sql << "SELECT COUNT(*) FROM attachments", soci::into(n);
    return n;
  });
  EXPECT_EQ(stored, 0);
}

TEST(Attachments, AnotherOrganisationCanNeitherListReadNorDeleteAFile) {
  auto f = make_fixture();
  const int32_t rid = new_requisition(*f);
  const int32_t po = new_order(*f, rid, "2026-03-02 09:00:00");
  auto alice = f->session(f->ids.alice), frank = f->session(f->ids.frank);
  UIAttach attach(f->runtime);
  struct Case {
    const char* name;
    int32_t option, id, line;
  } cases[] = {{"requisition", 1, rid, 0}, {"requisition line", 2, rid, 1},
               {"order", 3, po, 0},        {"order line", 4, po, 1}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Variant new_id;
    ASSERT_TRUE(attach.AddAttachment(alice, c.option, c.id, c.line, "terms.txt", "secret", new_id))
        << attach.Error()->Description();
    const int32_t file = new_id.to_int32();

    EXPECT_FALSE(attach.GetAttachmentListRs(frank, c.option, c.id, c.line));
    EXPECT_EQ(attach.Error()->Number(), error_number(Refusal::kNotAllowed));
    Variant name, content;
    EXPECT_FALSE(attach.GetAttachment(frank, c.option, c.id, c.line, file, name, content));
    EXPECT_EQ(attach.Error()->Number(), error_number(Refusal::kNotAllowed));
    EXPECT_THAT(attach.Error()->Description(), HasSubstr("another organisation"));
    EXPECT_NE(content.to_string(), "secret");
    EXPECT_FALSE(attach.DeleteAttachment(frank, c.option, c.id, c.line, file));
    EXPECT_EQ(attach.Error()->Number(), error_number(Refusal::kNotAllowed));
    Variant added;
    EXPECT_FALSE(attach.AddAttachment(frank, c.option, c.id, c.line, "x.txt", "x", added));
    EXPECT_EQ(attach.Error()->Number(), error_number(Refusal::kNotAllowed));

    EXPECT_THAT(column(attach.GetAttachmentListRs(alice, c.option, c.id, c.line), "FileName"),
                ElementsAre("terms.txt"))
        << "the refused delete and add changed nothing";
  }
}

TEST(Reports, CsvFilesAreMadeFromRealRows) {
  auto f = make_fixture();
  const int32_t rid = new_requisition(*f);
  const int32_t early = new_order(*f, rid, "2026-01-10 08:00:00");
  const int32_t late = new_order(*f, rid, "2026-03-02 09:00:00");
  auto alice = f->session(f->ids.alice), frank = f->session(f->ids.frank);
  UIReport reports(f->runtime);

  RecordsetPtr list = reports.GetReportListPage(alice, 0);
  ASSERT_TRUE(list) << reports.Error()->Description();
  EXPECT_THAT(column(list, "ReportName"), ElementsAre("Orders by Supplier", "Purchase Orders"))
      << "the fixture's pages hold two rows";
  EXPECT_THAT(column(reports.GetReportListPage(alice, 3), "ReportName"),
              ElementsAre("Spending by Commodity", "User Privileges"));
  RecordsetPtr params = reports.GetReportParamsRs(alice, 2);
  ASSERT_TRUE(params);
  EXPECT_THAT(column(params, "ParamName"), ElementsAre("FromDate", "ToDate"));

  auto csv_of = [&](const SessionPtr& s, int32_t report, std::vector<Variant> values) {
    Variant name, file;
    const Variant given = values.empty() ? Variant() : Variant(Array::of(values));
    EXPECT_TRUE(reports.GenerateReport(s, report, given, "csv", name, file))
        << reports.Error()->Description();
    return file.to_string();
  };
  const std::string all_reqs = csv_of(alice, 1, {});
  EXPECT_THAT(all_reqs, ::testing::StartsWith("ReqID,ReqName,StatusID,Requisitioner,CreateDate,"
                                              "CurrencyCode,LineCount,Total\r\n"));
  EXPECT_THAT(all_reqs, HasSubstr(std::to_string(rid)));
  EXPECT_THAT(all_reqs, HasSubstr("Alice Asker"));
  EXPECT_THAT(all_reqs, HasSubstr("7.5")) << "three pens at 2.50";
  EXPECT_THAT(csv_of(alice, 1, {Variant(int32_t{99})}),
              ::testing::Not(HasSubstr("Alice Asker")))
      << "no requisition has status 99";
  EXPECT_THAT(csv_of(frank, 1, {}), ::testing::Not(HasSubstr("Alice Asker")))
      << "another organisation's rows are not shown";

  struct Range {
    const char* name;
    std::vector<Variant> values;
    bool has_early, has_late;
  } ranges[] = {
      {"from the default start", {}, true, true},
      {"from February", {Variant(std::string("2026-02-01"))}, false, true},
      {"to the early order's whole day",
       {Variant(std::string("2026-01-01")), Variant(std::string("2026-01-10"))}, true, false},
  };
  for (const Range& r : ranges) {
    SCOPED_TRACE(r.name);
    const std::string csv = csv_of(alice, 2, r.values);
    EXPECT_THAT(csv, ::testing::StartsWith(
                         "POID,ReqID,SupplierName,StatusID,CreateDate,CurrencyCode,Total\r\n"));
    const auto has_po = [&](int32_t po) {
      return csv.find("\r\n" + std::to_string(po) + ",") != std::string::npos;
    };
    EXPECT_EQ(has_po(early), r.has_early);
    EXPECT_EQ(has_po(late), r.has_late);
  }
  // Spending per commodity: pens (4 at 2.50) and untyped delivery (1.00) on each order.
  const std::string by_commodity = csv_of(alice, 3, {});
  EXPECT_THAT(by_commodity, ::testing::StartsWith("Commodity,CurrencyCode,OrderCount,Total\r\n"));
  EXPECT_THAT(by_commodity, HasSubstr("\r\nUnknown,USD,2,2\r\n"));
  EXPECT_THAT(by_commodity, HasSubstr("\r\nWriting,USD,2,20"));
  EXPECT_THAT(csv_of(alice, 3, {Variant(std::string("2026-02-01"))}),
              HasSubstr("\r\nWriting,USD,1,10"));

  Variant name, file;
  EXPECT_FALSE(reports.GenerateReport(alice, 42, Variant(), "csv", name, file));
  EXPECT_EQ(reports.Error()->Number(), error_number(Refusal::kNotFound));
}

// Receipts, an organisation's orders per supplier, and who may do what: each report from
// stored rows, limited to what the user's organisations may see.
TEST(Reports, ReceiptsSuppliersAndPrivilegesPerOrganisation) {
  auto f = make_fixture();
  const int32_t rid = new_requisition(*f);
  new_order(*f, rid, "2026-01-10 08:00:00");
  const int32_t late = new_order(*f, rid, "2026-03-02 09:00:00");
  // Four pens of the late order came on 3 March; one went back the next day.
  f->db->write([&](soci::session& sql) {
    sql << "INSERT INTO receipts (receipt_id, po_id, receive_date, doc_create_date, carton_cnt, "
           "received_by, create_date) VALUES (501, :p, '2026-03-03 10:00:00', "
           "'2026-03-03 10:00:00', 1, :u, '2026-03-03 10:00:00'), (502, :p2, "
           "'2026-03-04 10:00:00', '2026-03-04 10:00:00', 0, :u2, '2026-03-04 10:00:00')",
        soci::use(late), soci::use(f->ids.bob), soci::use(late), soci::use(f->ids.bob);
    sql << "INSERT INTO receipt_lines (receipt_id, line_num, received_qty, packing_slip_qty, "
           "comments) VALUES (501, 1, 4, 4, ''), (502, 1, -1, 0, 'Broken, sent back')";
    sql << "UPDATE po_lines SET received_qty = 3 WHERE po_id = :p AND line_num = 1",
        soci::use(late);
    sql << "UPDATE delegations SET enabled = 0";
    sql << "INSERT INTO delegations (sys_user_id, borg_id, delegatee_id, start_date, end_date, "
           "enabled) VALUES (:b, :o, :e, '2026-03-01 00:00:00', '2026-03-31 00:00:00', 1), "
           "(:d, :o2, :e2, '2026-04-01 00:00:00', '2026-04-30 00:00:00', 1)",
        soci::use(f->ids.bob), soci::use(f->ids.acme), soci::use(f->ids.erin),
        soci::use(f->ids.dave), soci::use(f->ids.acme), soci::use(f->ids.erin);
    sql << "INSERT INTO borg_users (borg_id, sys_user_id, spending_limit) VALUES (:o, :a, "
           "2500000)", soci::use(f->ids.acme), soci::use(f->ids.alice);
  });
  auto alice = f->session(f->ids.alice), frank = f->session(f->ids.frank);
  UIReport reports(f->runtime);
  const auto run = [&](const SessionPtr& s, int32_t report, std::vector<Variant> values,
                       std::string* csv) {
    Variant name, file;
    const Variant given = values.empty() ? Variant() : Variant(Array::of(values));
    const bool ok = reports.GenerateReport(s, report, given, "CSV", name, file);
    if (ok) *csv = file.to_string();
    return ok;
  };
  const Variant acme(f->ids.acme), berg(f->ids.berg), blank(std::string(""));
  struct Case {
    const char* name;
    SessionPtr session;
    int32_t report;
    std::vector<Variant> values;
    std::string csv;  // the whole file, or "" when refused
    int32_t error = 0;
  } const cases[] = {
      {"receipts and their correction", alice, 4, {},
       "ReceiptID,POID,LineNum,Description,ReceiveDate,ReceivedBy,OrderedQty,ReceivedQty,"
       "PackingSlipQty,Comments\r\n"
       "501," + std::to_string(late) + ",1,Blue ballpoint pen,2026-03-03 10:00:00,Bob Boss,4,4,4,"
       "\r\n502," + std::to_string(late) + ",1,Blue ballpoint pen,2026-03-04 10:00:00,Bob Boss,"
       "4,-1,0,\"Broken, sent back\"\r\n"},
      {"receipts up to the first day only", alice, 4,
       {Variant(std::string("2026-03-01")), Variant(std::string("2026-03-03"))},
       "ReceiptID,POID,LineNum,Description,ReceiveDate,ReceivedBy,OrderedQty,ReceivedQty,"
       "PackingSlipQty,Comments\r\n"
       "501," + std::to_string(late) + ",1,Blue ballpoint pen,2026-03-03 10:00:00,Bob Boss,4,4,4,"
       "\r\n"},
      {"another organisation's receipts are not shown", frank, 4, {},
       "ReceiptID,POID,LineNum,Description,ReceiveDate,ReceivedBy,OrderedQty,ReceivedQty,"
       "PackingSlipQty,Comments\r\n"},
      {"a start that is no date", alice, 4, {Variant(std::string("soon"))}, "",
       error_number(Refusal::kInvalidArgument)},
      {"orders per supplier of the user's organisation", alice, 5, {},
       "BorgName,SupplierName,CurrencyCode,OrderCount,Total,ReceivedTotal\r\n"
       "Acme,Office Supplies Inc,USD,2,22,7.5\r\n"},
      {"the same named by number, from February", alice, 5,
       {acme, Variant(std::string("2026-02-01"))},
       "BorgName,SupplierName,CurrencyCode,OrderCount,Total,ReceivedTotal\r\n"
       "Acme,Office Supplies Inc,USD,1,11,7.5\r\n"},
      {"an organisation the user is no member of", alice, 5, {berg}, "",
       error_number(Refusal::kNotAllowed)},
      {"an organisation that does not exist", alice, 5, {Variant(int32_t{999})}, "",
       error_number(Refusal::kNotFound)},
      {"privileges, limits and the delegation in force", alice, 6, {blank},
       "LoginID,UserName,Active,ManagerName,ApprovalLimit,SpendingLimit,CurrencyCode,"
       "DelegateName\r\n"
       "alice,Alice Asker,True,Bob Boss,0,250,USD,\r\n"
       "bob,Bob Boss,True,Carol Chief,1000,0,USD,Erin Standin\r\n"
       "carol,Carol Chief,True,,100000,0,USD,\r\n"
       "dave,Dave Adhoc,True,Carol Chief,500,0,USD,\r\n"
       "erin,Erin Standin,True,Bob Boss,0,0,USD,\r\n"},
      {"another organisation's people", frank, 6, {acme}, "", error_number(Refusal::kNotAllowed)},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    std::string csv;
    const bool ok = run(c.session, c.report, c.values, &csv);
    if (c.error != 0) {
      EXPECT_FALSE(ok);
      EXPECT_EQ(reports.Error()->Number(), c.error) << reports.Error()->Description();
      continue;
    }
    ASSERT_TRUE(ok) << reports.Error()->Description();
    EXPECT_EQ(csv, c.csv);
  }
  // A member of another organisation may report on it too.
  f->db->write([&](soci::session& sql) {
    sql << "INSERT INTO borg_users (borg_id, sys_user_id) VALUES (:o, :a)", soci::use(f->ids.berg),
        soci::use(f->ids.alice);
  });
  std::string csv;
  ASSERT_TRUE(run(alice, 6, {berg}, &csv)) << reports.Error()->Description();
  EXPECT_THAT(csv, HasSubstr("\r\nfrank,Frank Fremd,True,,0,0,EUR,\r\n"));
}

}  // namespace
}  // namespace kxui::reference
