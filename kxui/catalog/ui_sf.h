// UISF: smart forms — the description of a part's smart form and the values of its
// fields on requisition and purchase-order lines.
//
// Every operation creates "KxSF03.SFormReqItem" through the ClassFactory, one per call,
// and releases it before it returns. Failures are recorded under "UISF::<operation>".
// There is no Success property.
#pragma once

#include <cstdint>
#include <memory>

#include "kxui/frame/byref.h"
#include "kxui/frame/facade.h"
#include "kxui/frame/recordset.h"

namespace kxui {

class UISF : public Facade {
 public:
  explicit UISF(std::shared_ptr<Runtime> runtime = Runtime::process());

  // The readers return the smart-form object's record set as it comes (an empty one
  // included). When it answers Nothing, its own error is recorded and they return
  // Nothing; any other failure also gives Nothing.

  // The fields of smart form plngSmartFormID.
  RecordsetPtr GetDescription(const SessionPtr& p_Session, int32_t plngSmartFormID,
                              ByRef<Variant> p_CustomData = {}) noexcept;
  // The values stored for line plngLineNum of requisition plngReqID.
  RecordsetPtr GetValues(const SessionPtr& p_Session, int32_t plngReqID, int32_t plngLineNum,
                         int32_t plngSmartFormID, ByRef<Variant> p_CustomData = {}) noexcept;
  // The values stored for line plngLineNum of purchase order plngPOID.
  RecordsetPtr GetValuesFromPO(const SessionPtr& p_Session, int32_t plngPOID,
                               int32_t plngLineNum, int32_t plngSmartFormID,
                               ByRef<Variant> p_CustomData = {}) noexcept;

  // The savers store the values of varArrayValues under the field names of
  // varArrayNames (parallel arrays) and return the smart-form object's answer as it is:
  // a False answer records nothing, so Error keeps what it held. False on any failure.

  // For line plngLineNum of requisition plngReqID.
  bool Save(const SessionPtr& p_Session, int32_t plngReqID, int32_t plngLineNum,
            int32_t plngSmartFormID, const Variant& varArrayNames, const Variant& varArrayValues,
            ByRef<Variant> p_CustomData = {}) noexcept;
  // For line plngLineNum of purchase order plngPOID.
  bool SaveToPO(const SessionPtr& p_Session, int32_t plngPOID, int32_t plngLineNum,
                int32_t plngSmartFormID, const Variant& varArrayNames,
                const Variant& varArrayValues, ByRef<Variant> p_CustomData = {}) noexcept;
};

}  // namespace kxui
