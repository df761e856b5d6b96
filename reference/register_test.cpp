// Registration: every name the library creates an object by is registered by the tier's
// one registration function (or is the platform's own service), each creates an object
// of its contract, no member is left at the "not supported" default, and the reference
// data agrees with the default services.
#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <set>

#include "kxui/business/account.h"
#include "kxui/business/approvals.h"
#include "kxui/business/attachment.h"
#include "kxui/business/borg_delegation.h"
#include "kxui/business/commodity.h"
#include "kxui/business/favorite_items.h"
#include "kxui/business/kx_session.h"
#include "kxui/business/part_search.h"
#include "kxui/business/po_receipt.h"
#include "kxui/business/cursor_data_access.h"
#include "kxui/business/progids.h"
#include "kxui/business/reconcile.h"
#include "kxui/business/purchase_order.h"
#include "kxui/business/req_cost_distribs.h"
#include "kxui/business/reference_data.h"
#include "kxui/business/report.h"
#include "kxui/business/requisition.h"
#include "kxui/business/resource.h"
#include "kxui/business/smart_form.h"
#include "kxui/business/templates.h"
#include "kxui/business/utils.h"
#include "kxui/business/workflow.h"
#include "kxui/frame/services.h"
#include "reference/test_fixture.h"

namespace kxui::reference {
namespace {

using testing::make_fixture;

// Whether an object offers the contract its ProgID names.
bool offers_contract(const std::string& id, const ObjectPtr& obj) {
  using namespace business;
  const std::pair<std::string_view, std::function<bool(const ObjectPtr&)>> contracts[] = {
      {progid::Requisition, [](auto& o) { return !!std::dynamic_pointer_cast<Requisition>(o); }},
      {progid::Templates, [](auto& o) { return !!std::dynamic_pointer_cast<Templates>(o); }},
      {progid::Workflow, [](auto& o) { return !!std::dynamic_pointer_cast<Workflow>(o); }},
      {progid::Diagram, [](auto& o) { return !!std::dynamic_pointer_cast<Diagram>(o); }},
      {progid::Approvals, [](auto& o) { return !!std::dynamic_pointer_cast<Approvals>(o); }},
      {progid::ApprovalReview, [](auto& o) { return !!std::dynamic_pointer_cast<ApprovalReview>(o); }},
      {progid::ApprovalItems, [](auto& o) { return !!std::dynamic_pointer_cast<ApprovalItems>(o); }},
      {progid::Approval, [](auto& o) { return !!std::dynamic_pointer_cast<Approval>(o); }},
      {progid::BorgDelegation, [](auto& o) { return !!std::dynamic_pointer_cast<BorgDelegation>(o); }},
      {progid::Utils, [](auto& o) { return !!std::dynamic_pointer_cast<Utils>(o); }},
      {progid::PartSearch, [](auto& o) { return !!std::dynamic_pointer_cast<PartSearch>(o); }},
      {progid::Commodity, [](auto& o) { return !!std::dynamic_pointer_cast<Commodity>(o); }},
      {progid::PurchaseOrder, [](auto& o) { return !!std::dynamic_pointer_cast<PurchaseOrder>(o); }},
      {progid::POItem, [](auto& o) { return !!std::dynamic_pointer_cast<POItem>(o); }},
      {progid::POItems, [](auto& o) { return !!std::dynamic_pointer_cast<POItems>(o); }},
      {progid::POLog, [](auto& o) { return !!std::dynamic_pointer_cast<POLog>(o); }},
      {progid::POStatus, [](auto& o) { return !!std::dynamic_pointer_cast<POStatus>(o); }},
      {progid::POReceipt, [](auto& o) { return !!std::dynamic_pointer_cast<POReceipt>(o); }},
      {progid::ReconcileOrder, [](auto& o) { return !!std::dynamic_pointer_cast<ReconcileOrder>(o); }},
      {progid::ReconcileItems, [](auto& o) { return !!std::dynamic_pointer_cast<ReconcileItems>(o); }},
      {progid::POCostDistribs, [](auto& o) { return !!std::dynamic_pointer_cast<POCostDistribs>(o); }},
      {progid::CursorDataAccess, [](auto& o) { return !!std::dynamic_pointer_cast<CursorDataAccess>(o); }},
      {progid::BillTo, [](auto& o) { return !!std::dynamic_pointer_cast<BillTo>(o); }},
      {progid::ShipTo, [](auto& o) { return !!std::dynamic_pointer_cast<ShipTo>(o); }},
      {progid::Borg, [](auto& o) { return !!std::dynamic_pointer_cast<Borg>(o); }},
      {progid::CostCenter, [](auto& o) { return !!std::dynamic_pointer_cast<CostCenter>(o); }},
      {progid::CurrencyCodes, [](auto& o) { return !!std::dynamic_pointer_cast<CurrencyCodes>(o); }},
      {progid::Locale, [](auto& o) { return !!std::dynamic_pointer_cast<Locale>(o); }},
      {progid::Mfr, [](auto& o) { return !!std::dynamic_pointer_cast<Mfr>(o); }},
      {progid::PaymentMethod, [](auto& o) { return !!std::dynamic_pointer_cast<PaymentMethod>(o); }},
      {progid::ReceiptItemStatus, [](auto& o) { return !!std::dynamic_pointer_cast<ReceiptItemStatus>(o); }},
      {progid::ShipMethod, [](auto& o) { return !!std::dynamic_pointer_cast<ShipMethod>(o); }},
      {progid::SysUser, [](auto& o) { return !!std::dynamic_pointer_cast<SysUser>(o); }},
      {progid::TimeZone, [](auto& o) { return !!std::dynamic_pointer_cast<TimeZone>(o); }},
      {progid::UOM, [](auto& o) { return !!std::dynamic_pointer_cast<UOM>(o); }},
      {progid::UserPaymentMethod, [](auto& o) { return !!std::dynamic_pointer_cast<UserPaymentMethod>(o); }},
      {progid::ReqAttachment, [](auto& o) { return !!std::dynamic_pointer_cast<Attachment>(o); }},
      {progid::ReqItemAttachment, [](auto& o) { return !!std::dynamic_pointer_cast<Attachment>(o); }},
      {progid::POAttachment, [](auto& o) { return !!std::dynamic_pointer_cast<Attachment>(o); }},
      {progid::POItemAttachment, [](auto& o) { return !!std::dynamic_pointer_cast<Attachment>(o); }},
      {progid::Report, [](auto& o) { return !!std::dynamic_pointer_cast<Report>(o); }},
      {progid::ReportParam, [](auto& o) { return !!std::dynamic_pointer_cast<ReportParam>(o); }},
      {progid::AR_Req, [](auto& o) { return !!std::dynamic_pointer_cast<ReportData>(o); }},
      {progid::FavoriteItems, [](auto& o) { return !!std::dynamic_pointer_cast<FavoriteItems>(o); }},
      {progid::ReqCostDistribs, [](auto& o) { return !!std::dynamic_pointer_cast<ReqCostDistribs>(o); }},
      {progid::KxSession, [](auto& o) { return !!std::dynamic_pointer_cast<KxSession>(o); }},
      {progid::SFormReqItem, [](auto& o) { return !!std::dynamic_pointer_cast<SFormReqItem>(o); }},
      {progid::AR_POByCommodity, [](auto& o) { return !!std::dynamic_pointer_cast<ReportData>(o); }},
      {progid::AR_PO, [](auto& o) { return !!std::dynamic_pointer_cast<ReportData>(o); }},
      {progid::AR_POReceipts, [](auto& o) { return !!std::dynamic_pointer_cast<ReportData>(o); }},
      {progid::AR_POByBorg, [](auto& o) { return !!std::dynamic_pointer_cast<ReportData>(o); }},
      {progid::AR_PrivByBorg, [](auto& o) { return !!std::dynamic_pointer_cast<ReportData>(o); }},
  };
  for (const auto& [name, check] : contracts) {
    if (id == name) return check(obj);
  }
  // Every other registered name is a resource object.
  return id.ends_with("03.Resource") && !!std::dynamic_pointer_cast<Resource>(obj);
}

// Every name under which the library creates an object, read from the headers that
// declare them, so that a name added there and forgotten here fails this test.
std::set<std::string> names_the_library_creates() {
  const std::filesystem::path root = KXUI_SOURCE_DIR;
  std::vector<std::filesystem::path> headers = {root / "kxui/frame/services.h"};
  for (const auto& entry : std::filesystem::directory_iterator(root / "kxui/business")) {
    if (entry.path().extension() == ".h") headers.push_back(entry.path());
  }
  static const std::regex kName("\"(Kx[A-Za-z0-9_]*\\.[A-Za-z0-9_]+)\"");
  std::set<std::string> names;
  for (const auto& header : headers) {
    std::ifstream in(header);
    const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    for (std::sregex_iterator it(text.begin(), text.end(), kName), end; it != end; ++it) {
      names.insert((*it)[1]);
    }
  }
  return names;
}

// The members a contract leaves at the "not supported" default, read from its source.
std::set<std::string> defaulted_members(const char* source) {
  std::ifstream in(std::filesystem::path(KXUI_SOURCE_DIR) / source);
  const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  static const std::regex kDefault("unsupported\\(\"([A-Za-z]+)\"\\)");
  std::set<std::string> names;
  for (std::sregex_iterator it(text.begin(), text.end(), kDefault), end; it != end; ++it) {
    names.insert((*it)[1]);
  }
  return names;
}

TEST(Register, EveryNameTheLibraryCreatesIsRegisteredAndCreates) {
  auto f = make_fixture();
  const std::set<std::string> names = names_the_library_creates();
  ASSERT_GT(names.size(), 60u) << "the headers were read";
  // Alone, the tier's registration covers all but the platform's own services.
  Runtime tier_only, services_only;
  Register(tier_only, f->db, {.table_settings = true, .table_log = true});
  services::ServiceOptions so;
  so.ini_directory = f->dir;
  services::RegisterDefaultServices(services_only, so);
  std::set<std::string> left_to_the_platform;
  for (const std::string& name : names) {
    if (!tier_only.IsRegistered(name)) left_to_the_platform.insert(name);
  }
  EXPECT_THAT(left_to_the_platform,
              ::testing::ElementsAre("KxLocale03.AddressFormatter", "KxLocale03.CurrencyFormatter",
                                     "KxLocale03.DateFormatter", "KxUtility03.KxError",
                                     "KxUtility03.UserGUID"));
  for (const std::string& name : left_to_the_platform) {
    EXPECT_TRUE(services_only.IsRegistered(name)) << name;
  }
  // The tier's own list names what it registers, the per-locale resources included.
  const std::vector<std::string> listed = RegisteredProgIDs(*f->db);
  EXPECT_EQ(listed.size(), 56u);
  EXPECT_THAT(listed, ::testing::Contains("KxLang_de_DE03.Resource"));
  EXPECT_THAT(listed, ::testing::Contains("KxLang_fr_FR03.Resource"));
  for (const std::string& name : names) {
    if (name.starts_with("KxReport03.") || name.starts_with("KxAttach03.")) {
      EXPECT_THAT(listed, ::testing::Contains(name));
    }
  }
  for (const std::string& id : listed) {
    SCOPED_TRACE(id);
    ASSERT_TRUE(tier_only.IsRegistered(id));
    ObjectPtr first = f->runtime->Create(id), second = f->runtime->Create(id);
    ASSERT_TRUE(first);
    EXPECT_NE(first, second) << "a new object per creation";
    EXPECT_TRUE(offers_contract(id, first));
    auto source = std::dynamic_pointer_cast<ErrorSource>(first);
    ASSERT_TRUE(source);
    EXPECT_TRUE(source->GetError());
  }
  // Everything else the library names creates too, by ProgID or by class.
  for (const std::string& name : names) {
    SCOPED_TRACE(name);
    EXPECT_TRUE(f->runtime->Create(name));
  }
  // Settings and log from the tables when asked for.
  EXPECT_TRUE(std::dynamic_pointer_cast<TableAppIni>(f->runtime->Create(progid::AppIni)));
  EXPECT_FALSE(std::dynamic_pointer_cast<TableLog>(f->runtime->Create(progid::NTLog)));
  // The login check is created by class, not through the ClassFactory.
  EXPECT_TRUE(create_as<business::LoginValidator>(*f->runtime,
                                                  business::record_class::kLoginValidator));
}

// The requisition contract is the one with defaults: each member must be overridden, so
// none may answer 438 whatever else it answers.
TEST(Register, NoRequisitionMemberIsLeftUnsupported) {
  auto f = make_fixture();
  auto s = f->session(f->ids.alice);
  auto req = create_as<business::Requisition>(*f->runtime, progid::Requisition);
  Variant cd;
  int32_t a = 0, b = 0, c = 0;
  Currency m1, m2, m3;
  const std::pair<const char*, std::function<void()>> members[] = {
      {"GetRequisitionList", [&] { req->GetRequisitionList(s, "", "", "", "", cd); }},
      {"UpdateReqName", [&] { req->UpdateReqName(s, 1, "n", cd); }},
      {"GetReqStatus", [&] { req->GetReqStatus(s, 1, a, b, cd); }},
      {"GetReqTotals", [&] { req->GetReqTotals(s, 1, "USD", m1, m2, m3, cd); }},
      {"Save", [&] { req->Save(s, cd); }},
      {"GetLog", [&] { try { req->GetLog(s, "", cd); } catch (const Failure&) {} }},
      {"NewLineItem", [&] { EXPECT_TRUE(req->NewLineItem()); }},
      {"CommitItem", [&] { req->CommitItem(s, "", cd); }},
      {"CommitSpecialRequestItem", [&] { req->CommitSpecialRequestItem(s, "", cd); }},
      {"CompleteItem", [&] { req->CompleteItem(s, 1, 1, cd); }},
      {"UpdateSpecialRequestItem", [&] { req->UpdateSpecialRequestItem(s, cd); }},
      {"AddFavoriteItem", [&] { req->AddFavoriteItem(s, 1, 1.0, a, b, c, cd); }},
      {"LockRequisition", [&] { req->LockRequisition(s, 1, cd); }},
      {"IsLockValid", [&] { req->IsLockValid(s, 1, cd); }},
      {"ReleaseLocks", [&] { req->ReleaseLocks(s, cd); }},
      {"SubmitRequisition", [&] { req->SubmitRequisition(s, 1, false, a, cd); }},
      {"CopyRequisition", [&] { req->CopyRequisition(s, 1, "n", a, b, c, 0, cd); }},
      {"CancelRequisition", [&] { req->CancelRequisition(s, 1, cd); }},
      {"DeleteRequisition", [&] { req->DeleteRequisition(s, 1, cd); }},
      {"MarkAsTemplate", [&] { req->MarkAsTemplate(s, 1, 1, cd); }},
      {"QuickCheckLines", [&] { req->QuickCheckLines(); }},
      {"ReqCurrencyCode", [&] { req->ReqCurrencyCode(); }},
      {"SetQuickCheckPrice", [&] { req->SetQuickCheckPrice(0, Currency()); }},
      {"GetItems", [&] { req->GetItems(s, 1, cd); }},
      {"GetItem", [&] { req->GetItem(s, 1, 1, cd); }},
      {"UpdateItemQty", [&] { req->UpdateItemQty(s, 1, 1, 1.0, cd); }},
      {"DeleteItem", [&] { req->DeleteItem(s, 1, 1, cd); }},
      {"ReleaseSessionLocks", [&] { EXPECT_TRUE(req->ReleaseSessionLocks(s, cd)); }},
  };
  std::set<std::string> tried;
  for (const auto& member : members) tried.insert(member.first);
  EXPECT_EQ(tried, defaulted_members("kxui/business/requisition.cpp"))
      << "every member with a default is tried";
  for (const auto& [name, call] : members) {
    SCOPED_TRACE(name);
    req->GetError()->SetNumber(0);
    try {
      call();
    } catch (const Failure& failure) {
      EXPECT_NE(failure.number(), err::kNoSuchMember);
    }
    EXPECT_NE(req->GetError()->Number(), err::kNoSuchMember);
  }
}

// The order contract has defaults too: none of its members may answer 438.
TEST(Register, NoPurchaseOrderMemberIsLeftUnsupported) {
  auto f = make_fixture();
  auto s = f->session(f->ids.alice);
  auto po = create_as<business::PurchaseOrder>(*f->runtime, progid::PurchaseOrder);
  auto items = create_as<business::POItems>(*f->runtime, progid::POItems);
  Variant cd;
  int32_t a = 0, b = 0, c = 0;
  const std::pair<const char*, std::function<void()>> members[] = {
      {"LoadPO", [&] { po->LoadPO(s, 1, true, cd); }},
      {"Header", [&] { po->Header(); }},
      {"Succeeded", [&] { po->Succeeded(); }},
      {"GetPOItems", [&] { po->GetPOItems(s, 1, 0, cd); }},
      {"GetPOList", [&] { po->GetPOList(s, Variant(""), Variant(""), "", Variant(""), Variant(""), cd); }},
      {"GetPOsByReq", [&] { po->GetPOsByReq(s, 1, cd); }},
      {"GetPOLog", [&] { po->GetPOLog(s, 1, "", cd); }},
      {"CopyToRequisition", [&] { po->CopyToRequisition(s, 1, "n", a, b, c, cd); }},
      {"DeletePO", [&] { po->DeletePO(s, 1, cd); }},
      {"DeleteLines", [&] { po->DeleteLines(s, items, 1, cd); }},
      {"GetStatusRecord", [&] { po->GetStatusRecord(s, 1, cd); }},
      {"IsValidLock", [&] { po->IsValidLock(s, 1, cd); }},
      {"Reset", [&] { po->Reset(s, cd); }},
      {"SetPOStatus", [&] { po->SetPOStatus(s, 1, 2, cd); }},
  };
  std::set<std::string> tried;
  for (const auto& member : members) tried.insert(member.first);
  EXPECT_EQ(tried, defaulted_members("kxui/business/purchase_order.cpp"))
      << "every member with a default is tried";
  for (const auto& [name, call] : members) {
    SCOPED_TRACE(name);
    po->GetError()->SetNumber(0);
    try {
      call();
    } catch (const Failure& failure) {
      EXPECT_NE(failure.number(), err::kNoSuchMember);
    }
    EXPECT_NE(po->GetError()->Number(), err::kNoSuchMember);
  }
}

// The late-bound organisation-user object answers every member the pages call by name,
// and the record objects are created by class.
TEST(Register, LateBoundAndRecordObjectsAnswer) {
  auto f = make_fixture();
  auto borg_user = create_as<Dispatch>(*f->runtime, progid::BorgUser);
  for (const char* name : {"setEboID", "setBorgID", "setSysUserID", "setSysUserIDBU", "fetch",
                           "setBillToID", "setShipToID", "setCostCenterID", "Update", "UPDATE"}) {
    SCOPED_TRACE(name);
    EXPECT_NE(borg_user->GetIDOfName(name), err::kNoSuchMember);
  }
  try {
    borg_user->GetIDOfName("Delete");
    ADD_FAILURE() << "an unknown member must fail";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.number(), err::kNoSuchMember);
  }
  namespace rc = business::record_class;
  EXPECT_TRUE(create_as<business::UserRecord>(*f->runtime, rc::kUser));
  EXPECT_TRUE(create_as<business::BorgUserRecord>(*f->runtime, rc::kBorgUserRecord));
  EXPECT_TRUE(create_as<business::EboRecord>(*f->runtime, rc::kEbo));
  EXPECT_TRUE(create_as<business::BorgRecord>(*f->runtime, rc::kBorg));
  EXPECT_TRUE(create_as<business::HostRecord>(*f->runtime, rc::kHost));
}

TEST(Register, ReferenceDataIsWhatTheServicesKnow) {
  auto f = make_fixture();
  auto money = create_as<CurrencyFormatter>(*f->runtime, service_class::kCurrencyFormatter);
  auto dates = create_as<DateFormatter>(*f->runtime, service_class::kDateFormatter);
  const Date noon = Date::from_civil(2026, 7, 1, 12, 0, 0);
  f->db->read([&](soci::session& sql) {
    soci::rowset<int> locales = (sql.prepare << "SELECT locale_id FROM locales");
    for (int locale : locales) {
      SCOPED_TRACE(locale);
      EXPECT_NO_THROW(money->FormatCurrencyAmount(locale, "EUR", 1234.5));
      EXPECT_NO_THROW(dates->FormatDateValue(locale, 2, noon));
    }
    soci::rowset<int> zones = (sql.prepare << "SELECT time_zone_id FROM time_zones");
    int count = 0;
    for (int zone : zones) {
      SCOPED_TRACE(zone);
      EXPECT_NO_THROW(dates->ConvertTimeZone(15, noon, zone));
      ++count;
    }
    EXPECT_EQ(count, 31);
  });
}

}  // namespace
}  // namespace kxui::reference
