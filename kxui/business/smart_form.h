// "KxSF03.SFormReqItem": the smart forms of catalog parts — the extra named fields a part
// asks for when it is ordered, and their values on requisition and order lines.
#pragma once

#include <cstdint>

#include "kxui/business/business_object.h"
#include "kxui/frame/recordset.h"
#include "kxui/frame/session.h"
#include "kxui/frame/variant.h"

namespace kxui::business {

class SFormReqItem : public virtual BusinessObject {
 public:
  // The readers answer Nothing when they fail (the reason in GetError); an existing
  // record set, empty or not, is an answer. Their columns are the smart form's own.

  // The fields of a smart form.
  virtual RecordsetPtr GetFormDescription(const SessionPtr& session, int32_t smart_form_id,
                                          Variant& custom_data) = 0;
  // The values stored for a requisition line.
  virtual RecordsetPtr GetReqLineValues(const SessionPtr& session, int32_t req_id,
                                        int32_t line_num, int32_t smart_form_id,
                                        Variant& custom_data) = 0;
  // The values stored for a purchase-order line.
  virtual RecordsetPtr GetPOLineValues(const SessionPtr& session, int32_t po_id,
                                       int32_t line_num, int32_t smart_form_id,
                                       Variant& custom_data) = 0;

  // The savers store the values of `names` (an array of field names) and `values` (an
  // array of the values, in the same order); their validation is the smart form's.
  // False when they refuse.
  virtual bool SaveReqLineValues(const SessionPtr& session, int32_t req_id, int32_t line_num,
                                 int32_t smart_form_id, const Variant& names,
                                 const Variant& values, Variant& custom_data) = 0;
  virtual bool SavePOLineValues(const SessionPtr& session, int32_t po_id, int32_t line_num,
                                int32_t smart_form_id, const Variant& names,
                                const Variant& values, Variant& custom_data) = 0;
};

}  // namespace kxui::business
