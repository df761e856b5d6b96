// "KxReq03.Requisition": a requisition of the business tier. One object per call; Load
// selects the requisition whose header and items the other members then work on.
//
// Members answer in one of two ways, stated at each: a Boolean result, or Success()
// read after the call. Either way a failure leaves its reason in GetError, and out
// arguments are meaningful only on success.
//
// Members after the first three have a default that fails with 438 (the object does not
// support the member), as a late-bound call would on a business tier that lacks it; a
// business tier overrides the members it offers.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "kxui/business/business_object.h"
#include "kxui/business/requisition_line_item.h"
#include "kxui/frame/recordset.h"
#include "kxui/frame/session.h"
#include "kxui/frame/variant.h"

namespace kxui::business {

// The header of a loaded requisition.
class RequisitionHeader : public virtual Object {
 public:
  virtual std::string ReqName() = 0;
  virtual int32_t ReqStatusID() = 0;
  virtual std::string Justification() = 0;
  virtual void SetJustification(const std::string& text) = 0;
  // Creation date in zone 15 (a Date, or Null when unknown).
  virtual Variant CreateDate() = 0;
  virtual std::string BorgName() = 0;
  virtual std::string RequisitionerName() = 0;
};

class Requisition : public virtual BusinessObject {
 public:
  // Loads a requisition, locking it for the session when `lock` is True. False (error in
  // GetError) when it cannot be loaded or locked.
  virtual bool Load(const SessionPtr& session, int32_t req_id, bool lock, Variant& custom_data) = 0;
  // The header of the loaded requisition.
  virtual std::shared_ptr<RequisitionHeader> Header() = 0;
  // Whether the last operation succeeded (for operations that answer through it).
  virtual bool Success() = 0;

  // --- Lists and header -----------------------------------------------------------

  // The requisitions of `user_name` in `borg_name` whose status is in `status_list`,
  // sorted by `sort_by` (the formats of both strings are the business tier's). Answers
  // through Success().
  virtual RecordsetPtr GetRequisitionList(const SessionPtr& session, const std::string& user_name,
                                          const std::string& borg_name, const std::string& sort_by,
                                          const std::string& status_list, Variant& custom_data);
  // Renames a requisition.
  virtual bool UpdateReqName(const SessionPtr& session, int32_t req_id, const std::string& name,
                             Variant& custom_data);
  // The status identifier and the number of items of a requisition.
  virtual bool GetReqStatus(const SessionPtr& session, int32_t req_id, int32_t& status_id,
                            int32_t& number_of_items, Variant& custom_data);
  // The totals of a requisition converted to `currency_code`.
  virtual bool GetReqTotals(const SessionPtr& session, int32_t req_id,
                            const std::string& currency_code, Currency& sub_total,
                            Currency& estimated_tax, Currency& total, Variant& custom_data);
  // Stores the loaded requisition's header (after RequisitionHeader::SetJustification).
  virtual bool Save(const SessionPtr& session, Variant& custom_data);
  // The log entries of the loaded requisition that match `filter` ("" for all), with at
  // least the date column "DateLogged" (zone 15). Failures are thrown as Failure.
  virtual RecordsetPtr GetLog(const SessionPtr& session, const std::string& filter,
                              Variant& custom_data);

  // --- Items ----------------------------------------------------------------------

  // A blank line item of this requisition object, to be filled and then stored by one of
  // the three members below (which store the item most recently handed out).
  virtual std::shared_ptr<RequisitionLineItem> NewLineItem();
  // Stores the filled catalog line as a new line; the item then holds its ReqID (of a
  // requisition created for it when it was given 0) and LineNum. `reserved` is "".
  virtual bool CommitItem(const SessionPtr& session, const std::string& reserved,
                          Variant& custom_data);
  // The same for a special request (a part outside the catalog).
  virtual bool CommitSpecialRequestItem(const SessionPtr& session, const std::string& reserved,
                                        Variant& custom_data);
  // The second step of storing a new line (defaults, smart form); afterwards the item's
  // SmartFormID is known.
  virtual bool CompleteItem(const SessionPtr& session, int32_t req_id, int32_t line_num,
                            Variant& custom_data);
  // Replaces the values of the existing special-request line named by the item's ReqID
  // and LineNum with the item's other values (every special-request value is written).
  virtual bool UpdateSpecialRequestItem(const SessionPtr& session, Variant& custom_data);
  // Adds the session user's favourite part `part_base_id` with quantity `qty` as a new,
  // complete line. `req_id` carries in the requisition to add to (0: the business tier
  // chooses or creates one) and out the one that holds the line; `line_num` and
  // `smart_form_id` carry out the new line's number and smart form.
  virtual bool AddFavoriteItem(const SessionPtr& session, int32_t part_base_id, double qty,
                               int32_t& req_id, int32_t& line_num, int32_t& smart_form_id,
                               Variant& custom_data);

  // --- Lifecycle ------------------------------------------------------------------

  // Locks a requisition for the session. Answers through Success().
  virtual void LockRequisition(const SessionPtr& session, int32_t req_id, Variant& custom_data);
  // Whether the session still holds its lock on a requisition. Answers through Success().
  virtual void IsLockValid(const SessionPtr& session, int32_t req_id, Variant& custom_data);
  // Releases every requisition lock the session holds.
  virtual bool ReleaseLocks(const SessionPtr& session, Variant& custom_data);
  // Submits a requisition; `number_of_pos` carries in the caller's value and out the
  // number of purchase orders the submission produced (the counting is the business
  // tier's, as is the meaning of `workflow_flag`).
  virtual bool SubmitRequisition(const SessionPtr& session, int32_t req_id, bool workflow_flag,
                                 int32_t& number_of_pos, Variant& custom_data);
  // Copies a requisition under `name`. Out: the new requisition's identifier (0 when no
  // copy was made), its number of items and how many of them were copied. `flag` selects
  // a copy mode of the business tier; the UI tier always passes 0.
  virtual bool CopyRequisition(const SessionPtr& session, int32_t req_id, const std::string& name,
                               int32_t& new_req_id, int32_t& number_of_items,
                               int32_t& number_of_items_copied, int32_t flag,
                               Variant& custom_data);
  virtual bool CancelRequisition(const SessionPtr& session, int32_t req_id, Variant& custom_data);
  virtual bool DeleteRequisition(const SessionPtr& session, int32_t req_id, Variant& custom_data);
  // Marks a requisition as a template of `template_type`.
  virtual bool MarkAsTemplate(const SessionPtr& session, int32_t req_id, int32_t template_type,
                              Variant& custom_data);

  // --- Session --------------------------------------------------------------------

  // Releases every requisition lock the session holds, when the user's session ends
  // (the session hub's call; ReleaseLocks is the requisition page's).
  virtual bool ReleaseSessionLocks(const SessionPtr& session, Variant& custom_data);

  // --- Quick check ----------------------------------------------------------------

  // What a supplier is asked about one line of the loaded requisition.
  struct QuickCheckLine {
    int32_t line_num = 0;
    int32_t supplier_id = 0;
    std::string supplier_part_num;
    std::string supplier_part_num_ext;
    std::string uom_id;
    double order_qty = 0;
    std::string supplier_currency_code;  // the currency the supplier prices in
  };
  // The lines of the loaded requisition, in item order.
  virtual std::vector<QuickCheckLine> QuickCheckLines();
  // The currency of the loaded requisition.
  virtual std::string ReqCurrencyCode();
  // Stores a supplier's price as both the unit and the actual unit price of line
  // `index` (0-based, in the order of QuickCheckLines); kept by Save.
  virtual void SetQuickCheckPrice(int32_t index, Currency price);

  // --- Cart -----------------------------------------------------------------------

  // The lines of a requisition, one row per line, with at least "LineNum", "OrderQty"
  // (a number), "UnitPrice" (money, Null when the line has no price yet) and
  // "CurrencyCode" (the price's currency). Answers through Success().
  virtual RecordsetPtr GetItems(const SessionPtr& session, int32_t req_id, Variant& custom_data);
  // One line of a requisition as one row with the columns of GetItems. Answers through
  // Success().
  virtual RecordsetPtr GetItem(const SessionPtr& session, int32_t req_id, int32_t line_num,
                               Variant& custom_data);
  // Sets the quantity of an existing line (already rounded to four decimals).
  virtual bool UpdateItemQty(const SessionPtr& session, int32_t req_id, int32_t line_num,
                             double qty, Variant& custom_data);
  // Removes a line from a requisition.
  virtual bool DeleteItem(const SessionPtr& session, int32_t req_id, int32_t line_num,
                          Variant& custom_data);
};

}  // namespace kxui::business
