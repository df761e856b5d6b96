// For the order tests: a fixture whose requisition was approved into one order, and
// small readers of record sets and order lines.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "kxui/requisition/ui_req.h"
#include "kxui/workflow/ui_wf.h"
#include "reference/test_fixture.h"

namespace kxui::reference::testing {

inline std::vector<std::string> column_values(Recordset& rs, const char* column) {
  std::vector<std::string> out;
  if (rs.RecordCount() == 0) return out;
  for (rs.MoveFirst(); !rs.IsEOF(); rs.MoveNext()) out.push_back(rs[column].Value().to_string());
  return out;
}

inline int32_t count_lines(Database& db, int32_t po_id) {
  return db.read([&](soci::session& sql) {
    int n = 0;
    sql << "SELECT COUNT(*) FROM po_lines WHERE po_id = :p", soci::use(po_id), soci::into(n);
    return n;
  });
}

// Alice orders 3 pens (2.50) and 2 boxes of paper (100.00); Bob approves: one order.
struct Ordered {
  std::unique_ptr<Fixture> f = make_fixture();
  int32_t req_id = 0, po_id = 0;

  Ordered() {
    auto alice = f->session(f->ids.alice);
    UIReq req(f->runtime);
    UIWF wf(f->runtime);
    Variant rid(int32_t{0}), line, form;
    EXPECT_TRUE(req.AddItemFastAdd(alice, rid, f->ids.supplier, "P-100", "", "3", "EA", line, form))
        << req.Error()->Description();
    EXPECT_TRUE(req.AddItemFavorite(alice, rid, f->ids.ream, "2", line, form))
        << req.Error()->Description();
    req_id = rid.to_int32();
    int32_t pos = 0;
    EXPECT_TRUE(req.SubmitReq(alice, req_id, false, pos)) << req.Error()->Description();
    EXPECT_TRUE(wf.Approve(f->session(f->ids.bob), req_id, 1, "")) << wf.Error()->Description();
    f->db->read([&](soci::session& sql) {
      sql << "SELECT po_id FROM purchase_orders WHERE req_id = :r", soci::use(req_id),
          soci::into(po_id);
    });
  }
};

}  // namespace kxui::reference::testing
