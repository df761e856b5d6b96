#include "reference/register.h"

#include <memory>

#include "kxui/business/progids.h"
#include "reference/account_records.h"
#include "reference/cart.h"
#include "reference/catalog.h"
#include "reference/cost_distribs.h"
#include "reference/documents.h"
#include "reference/login.h"
#include "reference/po_receipt.h"
#include "reference/purchase_order.h"
#include "reference/reconcile.h"
#include "reference/reference_lists.h"
#include "reference/report_sources.h"
#include "reference/req_cost_distribs.h"
#include "reference/requisition.h"
#include "reference/services.h"
#include "reference/session.h"
#include "reference/smart_forms.h"
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
  add<RefBillTo>(rt, progid::BillTo, db);
  add<RefShipTo>(rt, progid::ShipTo, db);
  add<RefBorg>(rt, progid::Borg, db);
  add<RefCostCenter>(rt, progid::CostCenter, db);
  add<RefCurrencyCodes>(rt, progid::CurrencyCodes, db);
  add<RefLocale>(rt, progid::Locale, db);
  add<RefMfr>(rt, progid::Mfr, db);
  add<RefPaymentMethod>(rt, progid::PaymentMethod, db);
  add<RefReceiptItemStatus>(rt, progid::ReceiptItemStatus, db);
  add<RefShipMethod>(rt, progid::ShipMethod, db);
  add<RefSysUser>(rt, progid::SysUser, db);
  add<RefTimeZone>(rt, progid::TimeZone, db);
  add<RefUOM>(rt, progid::UOM, db);
  add<RefUserPaymentMethod>(rt, progid::UserPaymentMethod, db);
  const std::pair<std::string_view, AttachmentOwner> attachments[] = {
      {progid::ReqAttachment, AttachmentOwner::kReq},
      {progid::ReqItemAttachment, AttachmentOwner::kReqItem},
      {progid::POAttachment, AttachmentOwner::kPO},
      {progid::POItemAttachment, AttachmentOwner::kPOItem}};
  // No structured binding here: clang 14 cannot capture one in a lambda.
  for (const auto& entry : attachments) {
    const AttachmentOwner owner = entry.second;
    rt.Register(entry.first, [db, owner] { return std::make_shared<RefAttachment>(db, owner); });
  }
  rt.Register(business::record_class::kLoginValidator,
              [db] { return std::make_shared<RefLoginValidator>(db); });
  add<RefFavoriteItems>(rt, progid::FavoriteItems, db);
  add<RefBorgUser>(rt, progid::BorgUser, db);
  add<RefSFormReqItem>(rt, progid::SFormReqItem, db);
  {
    namespace rc = business::record_class;
    rt.Register(rc::kUser, [db] { return std::make_shared<RefUserRecord>(db); });
    rt.Register(rc::kBorgUserRecord, [db] { return std::make_shared<RefBorgUserRecord>(db); });
    rt.Register(rc::kEbo, [db] { return std::make_shared<RefEboRecord>(db); });
    rt.Register(rc::kBorg, [db] { return std::make_shared<RefBorgRecord>(db); });
    rt.Register(rc::kHost, [db] { return std::make_shared<RefHostRecord>(db); });
  }
  add<RefKxSession>(rt, progid::KxSession, db);
  rt.Register(business::security_class::kSecurity,
              [db] { return std::make_shared<RefSecurity>(db); });
  rt.Register(business::security_class::kLogin, [db] { return std::make_shared<RefLogin>(db); });
  add<RefReqCostDistribs>(rt, progid::ReqCostDistribs, db);
  add<RefReport>(rt, progid::Report, db);
  add<RefReportParam>(rt, progid::ReportParam, db);
  add<RefReqReport>(rt, progid::AR_Req, db);
  add<RefPOReport>(rt, progid::AR_PO, db);
  add<RefPOByCommodityReport>(rt, progid::AR_POByCommodity, db);
  add<RefPOReceiptsReport>(rt, progid::AR_POReceipts, db);
  add<RefPOByBorgReport>(rt, progid::AR_POByBorg, db);
  add<RefPrivByBorgReport>(rt, progid::AR_PrivByBorg, db);
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
        progid::ReconcileOrder, progid::ReconcileItems, progid::POCostDistribs,
        progid::BillTo, progid::ShipTo, progid::Borg, progid::CostCenter,
        progid::CurrencyCodes, progid::Locale, progid::Mfr, progid::PaymentMethod,
        progid::ReceiptItemStatus, progid::ShipMethod, progid::SysUser, progid::TimeZone,
        progid::UOM, progid::UserPaymentMethod, progid::ReqAttachment,
        progid::ReqItemAttachment, progid::POAttachment, progid::POItemAttachment,
        progid::Report, progid::ReportParam, progid::AR_Req, progid::AR_PO, progid::AR_POByCommodity,
        progid::AR_POReceipts, progid::AR_POByBorg, progid::AR_PrivByBorg,
        progid::FavoriteItems, progid::ReqCostDistribs, progid::KxSession,
        progid::SFormReqItem}) {
    ids.emplace_back(id);
  }
  for (const LocaleNames& l : locale_resources(db)) ids.push_back(l.progid);
  return ids;
}

}  // namespace kxui::reference
