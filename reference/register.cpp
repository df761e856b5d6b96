#include "reference/register.h"

#include <memory>

#include "kxui/business/progids.h"
#include "reference/catalog.h"
#include "reference/cost_distribs.h"
#include "reference/po_receipt.h"
#include "reference/purchase_order.h"
#include "reference/reconcile.h"
#include "reference/requisition.h"
#include "reference/services.h"
#include "reference/supplier_sim.h"
#include "reference/workflow.h"

namespace kxui::reference {

namespace {

template <class T>
void add(Runtime& rt, std::string_view progid, const DatabasePtr& db) {
  rt.Register(progid, [db] { return std::make_shared<T>(db); });
}

struct LocaleNames {
  std::string progid, locale;
};

std::vector<LocaleNames> locale_resources(Database& db) {
  return db.read([](soci::session& sql) {
    std::vector<LocaleNames> out;
    soci::rowset<soci::row> rows =
        (sql.prepare << "SELECT lang_code, country_code, name FROM locales ORDER BY locale_id");
    for (const soci::row& row : rows) {
      out.push_back({"KxLang_" + row.get<std::string>(0) + "_" + row.get<std::string>(1) +
                         "03.Resource",
                     row.get<std::string>(2)});
    }
    return out;
  });
}

}  // namespace

void Register(Runtime& rt, const DatabasePtr& db, const RegisterOptions& options) {
  add<RefRequisition>(rt, progid::Requisition, db);
  add<RefTemplates>(rt, progid::Templates, db);
  add<RefWorkflow>(rt, progid::Workflow, db);
  add<RefDiagram>(rt, progid::Diagram, db);
  add<RefApprovals>(rt, progid::Approvals, db);
  add<RefApprovalReview>(rt, progid::ApprovalReview, db);
  add<RefApprovalItems>(rt, progid::ApprovalItems, db);
  add<RefApproval>(rt, progid::Approval, db);
  add<RefBorgDelegation>(rt, progid::BorgDelegation, db);
  add<RefUtils>(rt, progid::Utils, db);
  add<RefPartSearch>(rt, progid::PartSearch, db);
  add<RefCommodity>(rt, progid::Commodity, db);
  add<RefPurchaseOrder>(rt, progid::PurchaseOrder, db);
  add<RefPOItem>(rt, progid::POItem, db);
  add<RefPOItems>(rt, progid::POItems, db);
  add<RefPOLog>(rt, progid::POLog, db);
  add<RefPOStatus>(rt, progid::POStatus, db);
  add<RefPOReceipt>(rt, progid::POReceipt, db);
  add<RefPOCostDistribs>(rt, progid::POCostDistribs, db);
  add<RefCursorDataAccess>(rt, progid::CursorDataAccess, db);
  add<RefReconcileOrder>(rt, progid::ReconcileOrder, db);
  add<RefReconcileItems>(rt, progid::ReconcileItems, db);
  RegisterSimulatedSupplier(rt, db);
  // The default resource object speaks English.
  rt.Register(progid::Resource, [db] { return std::make_shared<RefResource>(db, "en-US"); });
  for (const LocaleNames& l : locale_resources(*db)) {
    rt.Register(l.progid, [db, locale = l.locale] {
      return std::make_shared<RefResource>(db, locale);
    });
  }
  if (options.table_settings) add<TableAppIni>(rt, progid::AppIni, db);
  if (options.table_log) {
    auto log = [db] { return std::make_shared<TableLog>(db); };
    rt.Register(progid::NTLog, log);
    rt.Register(progid::ClassFactoryNTLog, log);
  }
}

std::vector<std::string> RegisteredProgIDs(Database& db) {
  std::vector<std::string> ids;
  for (std::string_view id :
       {progid::Requisition, progid::Templates, progid::Workflow, progid::Diagram,
        progid::Approvals, progid::ApprovalReview, progid::ApprovalItems, progid::Approval,
        progid::BorgDelegation, progid::Utils, progid::PartSearch, progid::Commodity,
        progid::PurchaseOrder, progid::Resource, progid::POItem, progid::POItems,
        progid::POLog, progid::POStatus, progid::POReceipt, progid::CursorDataAccess,
        progid::ReconcileOrder, progid::ReconcileItems, progid::POCostDistribs}) {
    ids.emplace_back(id);
  }
  for (const LocaleNames& l : locale_resources(db)) ids.push_back(l.progid);
  return ids;
}

}  // namespace kxui::reference
