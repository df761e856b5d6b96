#include "reliability/sweep_world.h"

#include "kxui/business/account.h"
#include "kxui/business/progids.h"
#include "kxui/business/security_objects.h"
#include "kxui/business/supplier_exchange.h"
#include "reliability/sweep_generated.h"

namespace kxui::sweep {
namespace {

World* g_world = nullptr;

template <class T>
void provide(World& w, std::string_view name) {
  w.env->provide_fn(name, [] { return std::static_pointer_cast<Object>(make_fake<T>()); });
}

void provide_dispatch(World& w, std::string_view name) {
  w.env->provide_fn(name, [] { return remember(std::make_shared<FakeDispatch>()); });
}

}  // namespace

int32_t FakeError::Number() const {
  point("BusinessError::Number");
  return kRefusedNumber;
}
std::string FakeError::Description() const {
  point("BusinessError::Description");
  return "refused";
}
std::string FakeError::Source() const {
  point("BusinessError::Source");
  return kRefusedSource;
}
std::string FakeError::GetMessageText(const SessionPtr&, int32_t, const std::string& english,
                                      const Array&) {
  point("BusinessError::GetMessageText");
  return english;
}

ErrorInfoPtr FakeErrorSource::GetError() {
  point("GetError");
  return remember(std::make_shared<FakeError>());
}

int32_t SweepSession::Value() const { return point("Session::Value"), BasicSession::Value(); }
int32_t SweepSession::LocaleID() const {
  return point("Session::LocaleID"), BasicSession::LocaleID();
}
int32_t SweepSession::TimeZoneID() const {
  return point("Session::TimeZoneID"), BasicSession::TimeZoneID();
}
std::string SweepSession::CurrencyCode() const {
  return point("Session::CurrencyCode"), BasicSession::CurrencyCode();
}
std::string SweepSession::LangCode() const {
  return point("Session::LangCode"), BasicSession::LangCode();
}
std::string SweepSession::CountryCode() const {
  return point("Session::CountryCode"), BasicSession::CountryCode();
}
int32_t SweepSession::EboID() const { return point("Session::EboID"), BasicSession::EboID(); }
int32_t SweepSession::BorgID() const { return point("Session::BorgID"), BasicSession::BorgID(); }
int32_t SweepSession::SysUserID() const {
  return point("Session::SysUserID"), BasicSession::SysUserID();
}

int32_t FakeDispatch::GetIDOfName(std::string_view) {
  point("Dispatch::GetIDOfName");
  return 1;
}
Variant FakeDispatch::Invoke(int32_t, std::span<Variant>) {
  point("Dispatch::Invoke");
  return Variant(World::current().answer_bool);
}

World::World() {
  g_world = this;
  session->ebo_id = session->borg_id = session->sys_user_id = 1;
  namespace p = progid;
  namespace b = business;
  provide<b::UserPaymentMethod>(*this, p::UserPaymentMethod);
  provide<b::Attachment>(*this, p::POAttachment);
  provide<b::Attachment>(*this, p::POItemAttachment);
  provide<b::Attachment>(*this, p::ReqAttachment);
  provide<b::Attachment>(*this, p::ReqItemAttachment);
  provide<b::Commodity>(*this, p::Commodity);
  provide<b::PartSearch>(*this, p::PartSearch);
  provide<b::BillTo>(*this, p::BillTo);
  provide<b::Borg>(*this, p::Borg);
  provide<b::CostCenter>(*this, p::CostCenter);
  provide<b::CurrencyCodes>(*this, p::CurrencyCodes);
  provide<b::Locale>(*this, p::Locale);
  provide<b::Mfr>(*this, p::Mfr);
  provide<b::PaymentMethod>(*this, p::PaymentMethod);
  provide<b::ReceiptItemStatus>(*this, p::ReceiptItemStatus);
  provide<b::ShipMethod>(*this, p::ShipMethod);
  provide<b::ShipTo>(*this, p::ShipTo);
  provide<b::SysUser>(*this, p::SysUser);
  provide<b::TimeZone>(*this, p::TimeZone);
  provide<b::UOM>(*this, p::UOM);
  provide<b::POStatus>(*this, p::POStatus);
  provide<b::Resource>(*this, p::Resource);
  provide<b::POCostDistribs>(*this, p::POCostDistribs);
  provide<b::POItem>(*this, p::POItem);
  provide<b::POItems>(*this, p::POItems);
  provide<b::POLog>(*this, p::POLog);
  provide<b::PurchaseOrder>(*this, p::PurchaseOrder);
  provide<b::POReceipt>(*this, p::POReceipt);
  provide<b::ReconcileItems>(*this, p::ReconcileItems);
  provide<b::ReconcileOrder>(*this, p::ReconcileOrder);
  for (auto id : {p::AR_PO, p::AR_POByBorg, p::AR_POByCommodity, p::AR_POReceipts,
                  p::AR_PrivByBorg, p::AR_Req}) {
    provide<b::ReportData>(*this, id);
  }
  provide<b::Report>(*this, p::Report);
  provide<b::ReportParam>(*this, p::ReportParam);
  provide<b::FavoriteItems>(*this, p::FavoriteItems);
  provide<b::ReqCostDistribs>(*this, p::ReqCostDistribs);
  provide<b::Templates>(*this, p::Templates);
  provide<b::Requisition>(*this, p::Requisition);
  provide<b::SFormReqItem>(*this, p::SFormReqItem);
  provide<b::CursorDataAccess>(*this, p::CursorDataAccess);
  provide<UserGUID>(*this, p::UserGUID);
  provide<b::Utils>(*this, p::Utils);
  provide<b::Approval>(*this, p::Approval);
  provide<b::ApprovalItems>(*this, p::ApprovalItems);
  provide<b::ApprovalReview>(*this, p::ApprovalReview);
  provide<b::Approvals>(*this, p::Approvals);
  provide<b::BorgDelegation>(*this, p::BorgDelegation);
  provide<b::Workflow>(*this, p::Workflow);
  provide<b::Diagram>(*this, p::Diagram);
  provide<b::LoginValidator>(*this, b::record_class::kLoginValidator);
  provide<b::UserRecord>(*this, b::record_class::kUser);
  provide<b::BorgUserRecord>(*this, b::record_class::kBorgUserRecord);
  provide<b::EboRecord>(*this, b::record_class::kEbo);
  provide<b::BorgRecord>(*this, b::record_class::kBorg);
  provide<b::HostRecord>(*this, b::record_class::kHost);
  provide<b::SecurityObject>(*this, b::security_class::kSecurity);
  provide<b::LoginObject>(*this, b::security_class::kLogin);
  // The session hub hands out the caller's own session.
  env->provide_fn(p::KxSession, [this] { return std::static_pointer_cast<Object>(session); });
  provide_dispatch(*this, p::BorgUser);
  provide_dispatch(*this, supplier::kSupplierQuery);
  provide_dispatch(*this, supplier::kQuickCheckItem);
  provide_dispatch(*this, supplier::kRequestHeader);
  // Language resources are named after the caller's text argument ("1").
  provide<b::Resource>(*this, "103.Resource");
  provide<b::Resource>(*this, "1en_US03.Resource");
  services.ini->set("Page Size", "Paging", "Dunmere", "2");
}

World::~World() { g_world = nullptr; }

World& World::current() { return *g_world; }

void World::reset_arguments() {
  custom = Variant("custom data");
  out_text = "caller's text";
  out_number = 7;
  out_short = 7;
  out_recordset = nullptr;
  inout_variant = Variant(int32_t{1});
  out_variant = Variant::missing();
  doc_type = "PO";
  array = Array::of({Variant(int32_t{1}), Variant("1")});
}

std::string World::describe_outs() const {
  return describe(out_text) + "|" + std::to_string(out_number) + "|" + std::to_string(out_short) +
         "|" + describe(out_recordset) + "|" + describe(out_variant);
}

RecordsetPtr World::recordset() {
  auto rs = std::make_shared<Recordset>();
  for (const std::string& c : columns) rs->GetFields().Append(c, adVariant);
  rs->Open();
  for (int row = 0; row < 2; ++row) {
    rs->AddNew();
    for (size_t i = 0; i < columns.size(); ++i) {
      rs->set_value(static_cast<int32_t>(i), Variant(int32_t{1}));
    }
    rs->Update();
  }
  rs->MoveFirst();
  return rs;  // a value the caller may keep, not an object the call must release
}

std::string describe(const Variant& v) {
  auto s = v.try_to_string();
  return std::to_string(static_cast<int>(v.kind())) + ":" + (s ? *s : "?");
}

std::string describe(const RecordsetPtr& rs) {
  if (!rs) return "Nothing";
  std::string out = "rs(" + std::to_string(rs->RecordCount()) + ":";
  for (int32_t i = 0; i < rs->GetFields().Count(); ++i) out += rs->GetFields()[i].Name() + ",";
  return out + ")";
}

void clear_error(const ErrorInfoPtr& e) {
  e->SetNumber(0);
  e->SetSource("");
  e->SetDescription("");
}

std::vector<Operation> all_operations() {
  std::vector<Operation> ops;
  add_operations(ops);
  return ops;
}

}  // namespace kxui::sweep
