// "KxSF03.SFormReqItem" over the smart-form tables: a form's fields in order, and the
// values of requisition and order lines. Saving checks the names against the form, the
// lengths against each field's maximum, and that every required field has a value; the
// values given replace the line's values as a whole.
#pragma once

#include "kxui/business/smart_form.h"
#include "reference/object_base.h"

namespace kxui::reference {

class RefSFormReqItem : public business::SFormReqItem, public RefObject {
 public:
  explicit RefSFormReqItem(DatabasePtr db) : RefObject(std::move(db), "SFormReqItem") {}
  RecordsetPtr GetFormDescription(const SessionPtr& session, int32_t smart_form_id,
                                  Variant& custom_data) override;
  RecordsetPtr GetReqLineValues(const SessionPtr& session, int32_t req_id, int32_t line_num,
                                int32_t smart_form_id, Variant& custom_data) override;
  RecordsetPtr GetPOLineValues(const SessionPtr& session, int32_t po_id, int32_t line_num,
                               int32_t smart_form_id, Variant& custom_data) override;
  bool SaveReqLineValues(const SessionPtr& session, int32_t req_id, int32_t line_num,
                         int32_t smart_form_id, const Variant& names, const Variant& values,
                         Variant& custom_data) override;
  bool SavePOLineValues(const SessionPtr& session, int32_t po_id, int32_t line_num,
                        int32_t smart_form_id, const Variant& names, const Variant& values,
                        Variant& custom_data) override;

 private:
  RecordsetPtr values(const Session& s, int kind, int32_t owner_id, int32_t line_num,
                      int32_t smart_form_id);
  void save(const Session& s, int kind, int32_t owner_id, int32_t line_num,
            int32_t smart_form_id, const Variant& names, const Variant& values);
};

}  // namespace kxui::reference
