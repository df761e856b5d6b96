// A line of a requisition as the UI tier fills it: handed out blank by
// Requisition::NewLineItem, filled through its setters, stored by the requisition
// (CommitItem, CommitSpecialRequestItem, UpdateSpecialRequestItem), which then gives it
// its identity (ReqID, LineNum, SmartFormID).
#pragma once

#include <cstdint>
#include <string>

#include "kxui/frame/object.h"
#include "kxui/frame/variant.h"

namespace kxui::business {

class RequisitionLineItem : public virtual Object {
 public:
  // The requisition the line belongs to. Written before storing (0: let the business tier
  // choose or create one); read back after storing.
  virtual int32_t ReqID() = 0;
  virtual void SetReqID(int32_t req_id) = 0;
  // The line's number within its requisition: assigned when a new line is stored; written
  // by the caller to name an existing line for an update.
  virtual int32_t LineNum() = 0;
  virtual void SetLineNum(int32_t line_num) = 0;
  // The smart form that holds the line's extra fields, known once the line is complete.
  virtual int32_t SmartFormID() = 0;

  virtual void SetSupplierID(int32_t supplier_id) = 0;
  virtual void SetSupplierName(const std::string& name) = 0;
  virtual void SetSupplierPartNum(const std::string& part_num) = 0;
  virtual void SetSupplierPartNumExt(const std::string& part_num_ext) = 0;
  // The quantity as a Double, already rounded to four decimals.
  virtual void SetOrderQty(const Variant& qty) = 0;
  virtual void SetUOMID(const std::string& uom_id) = 0;
  virtual void SetMfrID(int32_t mfr_id) = 0;
  virtual void SetMfrName(const std::string& name) = 0;
  virtual void SetCommodityID(int32_t commodity_id) = 0;
  virtual void SetCommodityAlias(const std::string& alias) = 0;
  // Estimated price of a special request, in CurrencyCode.
  virtual void SetUnitPrice(Currency price) = 0;
  virtual void SetCurrencyCode(const std::string& currency_code) = 0;
  virtual void SetPartDesc(const std::string& description) = 0;
  // True for a part that is not in the catalog.
  virtual void SetIsSpecialRequest(bool special) = 0;
};

}  // namespace kxui::business
