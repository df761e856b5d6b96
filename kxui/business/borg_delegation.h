// "KxWF03.BorgDelegation": the session user's delegation of approval authority to
// another user of the organisation (borg), and the search for such delegates.
#pragma once

#include <cstdint>
#include <string>

#include "kxui/business/business_object.h"
#include "kxui/frame/recordset.h"
#include "kxui/frame/session.h"
#include "kxui/frame/variant.h"

namespace kxui::business {

class BorgDelegation : public virtual BusinessObject {
 public:
  // Loads the session user's delegation. When there is none yet the properties hold their
  // defaults (nobody, not enabled) and the answer is True, so that DelegationEnabled can be
  // asked before the first delegation; False with Success False on a failure. (Callers also
  // accept False with Success True, which some tiers answer for "none yet".)
  virtual bool Load(const SessionPtr& session, Variant& custom_data) = 0;
  // Stores the properties as the session user's delegation. False (reason in GetError)
  // when refused.
  virtual bool Save(const SessionPtr& session, Variant& custom_data) = 0;
  // Users who may receive the delegation; Success tells whether the search ran.
  virtual RecordsetPtr GetDelegateSearchResults(const SessionPtr& session,
                                                const std::string& search_name,
                                                const std::string& search_login,
                                                Variant& custom_data) = 0;

  virtual int32_t BorgID() = 0;
  virtual void SetBorgID(int32_t id) = 0;
  virtual int32_t SysUserID() = 0;
  virtual void SetSysUserID(int32_t id) = 0;
  virtual int32_t DelegateeID() = 0;
  virtual void SetDelegateeID(int32_t id) = 0;
  virtual std::string DelegateeName() = 0;
  virtual std::string DelegateeLoginID() = 0;
  virtual Date DelegateStartDate() = 0;
  virtual void SetDelegateStartDate(Date d) = 0;
  virtual Date DelegateEndDate() = 0;
  virtual void SetDelegateEndDate(Date d) = 0;
  virtual bool Enabled() = 0;
  virtual void SetEnabled(bool enabled) = 0;
  // Whether the organisation allows delegation at all.
  virtual bool DelegationEnabled() = 0;

  virtual bool Success() = 0;
};

}  // namespace kxui::business
