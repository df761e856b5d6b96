#include "kxui/catalog/ui_sf.h"

#include "kxui/business/progids.h"
#include "kxui/business/smart_form.h"

namespace kxui {

UISF::UISF(std::shared_ptr<Runtime> runtime) : Facade("UISF", std::move(runtime)) {}

// Readers: Nothing from the smart-form object is its failure, so its own error is raised.

RecordsetPtr UISF::GetDescription(const SessionPtr& p_Session, int32_t plngSmartFormID,
                                  ByRef<Variant> p_CustomData) noexcept {
  return guarded("UISF::GetDescription", RecordsetPtr(), [&] {
    auto form = create<business::SFormReqItem>(progid::SFormReqItem);
    RecordsetPtr rs = form->GetFormDescription(p_Session, plngSmartFormID, *p_CustomData);
    check(form, rs != nullptr);
    return rs;
  });
}

RecordsetPtr UISF::GetValues(const SessionPtr& p_Session, int32_t plngReqID, int32_t plngLineNum,
                             int32_t plngSmartFormID, ByRef<Variant> p_CustomData) noexcept {
  return guarded("UISF::GetValues", RecordsetPtr(), [&] {
    auto form = create<business::SFormReqItem>(progid::SFormReqItem);
    RecordsetPtr rs = form->GetReqLineValues(p_Session, plngReqID, plngLineNum, plngSmartFormID,
                                             *p_CustomData);
    check(form, rs != nullptr);
    return rs;
  });
}

RecordsetPtr UISF::GetValuesFromPO(const SessionPtr& p_Session, int32_t plngPOID,
                                   int32_t plngLineNum, int32_t plngSmartFormID,
                                   ByRef<Variant> p_CustomData) noexcept {
  return guarded("UISF::GetValuesFromPO", RecordsetPtr(), [&] {
    auto form = create<business::SFormReqItem>(progid::SFormReqItem);
    RecordsetPtr rs = form->GetPOLineValues(p_Session, plngPOID, plngLineNum, plngSmartFormID,
                                            *p_CustomData);
    check(form, rs != nullptr);
    return rs;
  });
}

// Savers: the answer goes back as it is; a refusal is the page's to report.

bool UISF::Save(const SessionPtr& p_Session, int32_t plngReqID, int32_t plngLineNum,
                int32_t plngSmartFormID, const Variant& varArrayNames,
                const Variant& varArrayValues, ByRef<Variant> p_CustomData) noexcept {
  return guarded("UISF::Save", false, [&] {
    auto form = create<business::SFormReqItem>(progid::SFormReqItem);
    return form->SaveReqLineValues(p_Session, plngReqID, plngLineNum, plngSmartFormID,
                                   varArrayNames, varArrayValues, *p_CustomData);
  });
}

bool UISF::SaveToPO(const SessionPtr& p_Session, int32_t plngPOID, int32_t plngLineNum,
                    int32_t plngSmartFormID, const Variant& varArrayNames,
                    const Variant& varArrayValues, ByRef<Variant> p_CustomData) noexcept {
  return guarded("UISF::SaveToPO", false, [&] {
    auto form = create<business::SFormReqItem>(progid::SFormReqItem);
    return form->SavePOLineValues(p_Session, plngPOID, plngLineNum, plngSmartFormID,
                                  varArrayNames, varArrayValues, *p_CustomData);
  });
}

}  // namespace kxui
