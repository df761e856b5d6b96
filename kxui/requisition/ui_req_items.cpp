// UIReq: adding lines to a requisition and updating special requests. Input typed on the
// page is read in the user's locale and checked before the business tier sees anything,
// so a rejected input never leaves a half-stored line behind.
#include "kxui/requisition/ui_req.h"

#include <cmath>
#include <optional>

#include "kxui/business/progids.h"
#include "kxui/business/requisition.h"

namespace kxui {

namespace {

// The values of a special-request line after its identity, as the page gives them.
struct SpecialRequestValues {
  int32_t supplier_id;
  const std::string& supplier_name;
  const std::string& supplier_part_num;
  const std::string& supplier_part_num_ext;
  double qty;
  const std::string& uom_id;
  int32_t mfr_id;
  const std::string& mfr_name;
  int32_t commodity_id;
  const std::string& commodity_alias;
  Currency unit_price;
  const std::string& currency_code;
  const std::string& part_desc;
};

// Written in the order the business tier expects them, after ReqID (and LineNum).
void fill_special_request(business::RequisitionLineItem& item, const SpecialRequestValues& v) {
  item.SetSupplierID(v.supplier_id);
  item.SetSupplierName(v.supplier_name);
  item.SetSupplierPartNum(v.supplier_part_num);
  item.SetSupplierPartNumExt(v.supplier_part_num_ext);
  item.SetOrderQty(Variant(v.qty));
  item.SetUOMID(v.uom_id);
  item.SetMfrID(v.mfr_id);
  item.SetMfrName(v.mfr_name);
  item.SetCommodityID(v.commodity_id);
  item.SetCommodityAlias(v.commodity_alias);
  item.SetUnitPrice(v.unit_price);
  item.SetCurrencyCode(v.currency_code);
  item.SetPartDesc(v.part_desc);
  item.SetIsSpecialRequest(true);
}

// The three identifiers of a stored line, written together once all are known.
void report_line(int32_t req_id, int32_t line_num, int32_t smart_form_id, Variant& req_out,
                 Variant& line_out, Variant& smart_form_out) {
  req_out = Variant(req_id);
  line_out = Variant(line_num);
  smart_form_out = Variant(smart_form_id);
}

}  // namespace

double UIReq::parse_input(CurrencyFormatter& parser, const SessionPtr& session, int32_t locale_id,
                          const std::string& text, const msg::Message& invalid) {
  double number = 0;
  if (!parser.ParseNumber(locale_id, text, number) || !std::isfinite(number)) {
    raise_validation(session, invalid);
  }
  return number;
}

double UIReq::parse_quantity(CurrencyFormatter& parser, const SessionPtr& session,
                             int32_t locale_id, const std::string& text,
                             const msg::Message& invalid) {
  return conv::round_half_even(parse_input(parser, session, locale_id, text, invalid), 4);
}

Currency UIReq::parse_price(CurrencyFormatter& parser, const SessionPtr& session,
                            int32_t locale_id, const Variant& price, const msg::Message& invalid) {
  const std::optional<std::string> text = price.try_to_string();
  if (!text) raise_validation(session, invalid);
  const double amount = parse_input(parser, session, locale_id, *text, invalid);
  try {
    return Currency::from_double(amount);
  } catch (const Failure&) {
    // Beyond the money range is as unusable as unreadable text.
    raise_validation(session, invalid);
  }
}

void UIReq::complete_and_report(business::Requisition& req, business::RequisitionLineItem& item,
                                const SessionPtr& session, Variant& custom_data, Variant& req_id,
                                Variant& line_num, Variant& smart_form_id) {
  check(req, req.CompleteItem(session, item.ReqID(), item.LineNum(), custom_data));
  report_line(item.ReqID(), item.LineNum(), item.SmartFormID(), req_id, line_num, smart_form_id);
}

bool UIReq::AddItemFastAdd(const SessionPtr& p_Session, ByRef<Variant> p_ReqID,
                           int32_t p_SupplierID, const std::string& p_SupplierPartNum,
                           const std::string& p_SupplierPartNumExt, const std::string& p_OrderQty,
                           const std::string& p_UOMID, ByRef<Variant> p_LineNum,
                           ByRef<Variant> p_SmartFormID, ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIReq::AddItemFastAdd", false, [&] {
    auto req = create<business::Requisition>(progid::Requisition);
    const Session& session = require(p_Session);
    const int32_t locale_id = session.LocaleID();
    auto parser = create_direct<CurrencyFormatter>(service_class::kCurrencyFormatter);
    const double qty =
        parse_quantity(*parser, p_Session, locale_id, p_OrderQty, msg::kInvalidFastAddQty);

    const auto item_ptr = req->NewLineItem();
    auto& item = require(item_ptr);
    item.SetReqID(p_ReqID->to_int32());
    item.SetSupplierID(p_SupplierID);
    item.SetSupplierPartNum(p_SupplierPartNum);
    item.SetSupplierPartNumExt(p_SupplierPartNumExt);
    item.SetOrderQty(Variant(qty));
    item.SetUOMID(p_UOMID);
    item.SetCurrencyCode(session.CurrencyCode());
    item.SetIsSpecialRequest(false);
    check(*req, req->CommitItem(p_Session, "", *p_CustomData));
    complete_and_report(*req, item, p_Session, *p_CustomData, *p_ReqID, *p_LineNum,
                        *p_SmartFormID);
    return true;
  });
}

bool UIReq::AddItemFavorite(const SessionPtr& p_Session, ByRef<Variant> p_ReqID,
                            int32_t p_PartBaseID, const std::string& p_OrderQty,
                            ByRef<Variant> p_LineNum, ByRef<Variant> p_SmartFormID,
                            ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIReq::AddItemFavorite", false, [&] {
    auto req = create<business::Requisition>(progid::Requisition);
    const int32_t locale_id = require(p_Session).LocaleID();
    auto parser = create_direct<CurrencyFormatter>(service_class::kCurrencyFormatter);
    const double qty =
        parse_quantity(*parser, p_Session, locale_id, p_OrderQty, msg::kInvalidFavoriteQty);

    int32_t req_id = p_ReqID->to_int32(), line_num = 0, smart_form_id = 0;
    check(*req, req->AddFavoriteItem(p_Session, p_PartBaseID, qty, req_id, line_num, smart_form_id,
                                     *p_CustomData));
    report_line(req_id, line_num, smart_form_id, *p_ReqID, *p_LineNum, *p_SmartFormID);
    return true;
  });
}

bool UIReq::AddItemSpecialRequest(
    const SessionPtr& p_Session, ByRef<Variant> p_ReqID, int32_t p_SupplierID,
    const std::string& p_SupplierName, const std::string& p_SupplierPartNum,
    const std::string& p_SupplierPartNumExt, const std::string& p_OrderQty,
    const std::string& p_UOMID, int32_t p_MfrID, const std::string& p_MfrName,
    int32_t p_CommodityID, const std::string& p_CommodityAlias, const Variant& p_UnitPrice,
    const std::string& p_CurrencyCode, const std::string& p_PartDesc, ByRef<Variant> p_LineNum,
    ByRef<Variant> p_SmartFormID, ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIReq::AddItemSpecialRequest", false, [&] {
    auto req = create<business::Requisition>(progid::Requisition);
    const int32_t locale_id = require(p_Session).LocaleID();
    auto parser = create_direct<CurrencyFormatter>(service_class::kCurrencyFormatter);
    const Currency price = parse_price(*parser, p_Session, locale_id, p_UnitPrice,
                                       msg::kInvalidSpecialRequestPrice);
    const double qty =
        parse_quantity(*parser, p_Session, locale_id, p_OrderQty, msg::kInvalidSpecialRequestQty);

    const auto item_ptr = req->NewLineItem();
    auto& item = require(item_ptr);
    item.SetReqID(p_ReqID->to_int32());
    fill_special_request(item, {p_SupplierID, p_SupplierName, p_SupplierPartNum,
                                p_SupplierPartNumExt, qty, p_UOMID, p_MfrID, p_MfrName,
                                p_CommodityID, p_CommodityAlias, price, p_CurrencyCode,
                                p_PartDesc});
    check(*req, req->CommitSpecialRequestItem(p_Session, "", *p_CustomData));
    complete_and_report(*req, item, p_Session, *p_CustomData, *p_ReqID, *p_LineNum,
                        *p_SmartFormID);
    return true;
  });
}

bool UIReq::UpdateSpecialRequestItem(
    const SessionPtr& p_Session, int32_t p_ReqID, int32_t p_LineNum, int32_t p_SupplierID,
    const std::string& p_SupplierName, const std::string& p_SupplierPartNum,
    const std::string& p_SupplierPartNumExt, const std::string& p_OrderQty,
    const std::string& p_UOMID, int32_t p_MfrID, const std::string& p_MfrName,
    int32_t p_CommodityID, const std::string& p_CommodityAlias, const Variant& p_UnitPrice,
    const std::string& p_CurrencyCode, const std::string& p_PartDesc,
    ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIReq::UpdateSpecialRequestItem", false, [&] {
    auto req = create<business::Requisition>(progid::Requisition);
    const int32_t locale_id = require(p_Session).LocaleID();
    auto parser = create_direct<CurrencyFormatter>(service_class::kCurrencyFormatter);
    const Currency price = parse_price(*parser, p_Session, locale_id, p_UnitPrice,
                                       msg::kInvalidUpdateSpecialPrice);
    const double qty =
        parse_quantity(*parser, p_Session, locale_id, p_OrderQty, msg::kInvalidUpdateSpecialQty);

    const auto item_ptr = req->NewLineItem();
    auto& item = require(item_ptr);
    item.SetReqID(p_ReqID);
    item.SetLineNum(p_LineNum);
    fill_special_request(item, {p_SupplierID, p_SupplierName, p_SupplierPartNum,
                                p_SupplierPartNumExt, qty, p_UOMID, p_MfrID, p_MfrName,
                                p_CommodityID, p_CommodityAlias, price, p_CurrencyCode,
                                p_PartDesc});
    check(*req, req->UpdateSpecialRequestItem(p_Session, *p_CustomData));
    return true;
  });
}

}  // namespace kxui
