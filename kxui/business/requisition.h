// "KxReq03.Requisition": a requisition of the business tier. One object per call; Load
// selects the requisition whose header and items the other members then work on.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "kxui/business/business_object.h"
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
};

}  // namespace kxui::business
