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

TEST(Reports, CsvFilesAreMadeFromRealRows) {
  auto f = make_fixture();
  const int32_t rid = new_requisition(*f);
  const int32_t early = new_order(*f, rid, "2026-01-10 08:00:00");
  const int32_t late = new_order(*f, rid, "2026-03-02 09:00:00");
  auto alice = f->session(f->ids.alice), frank = f->session(f->ids.frank);
  UIReport reports(f->runtime);

  RecordsetPtr list = reports.GetReportListPage(alice, 0);
  ASSERT_TRUE(list) << reports.Error()->Description();
  EXPECT_THAT(column(list, "ReportName"),
              ElementsAre("Purchase Orders", "Requisitions by Status"))
      << "the fixture's pages hold two rows";
  EXPECT_THAT(column(reports.GetReportListPage(alice, 2), "ReportName"),
              ElementsAre("Spending by Commodity"));
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

}  // namespace
}  // namespace kxui::reference
