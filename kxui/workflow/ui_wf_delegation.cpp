// UIWF: delegation of the user's approval authority to another user.
#include "kxui/business/borg_delegation.h"
#include "kxui/business/progids.h"
#include "kxui/workflow/ui_wf.h"

namespace kxui {

using business::BorgDelegation;

namespace {

// Loads the user's delegation; False only when the load failed. A False Load with
// Success still True means "none yet": the properties are then used as they are.
bool load_delegation(BorgDelegation& delegation, const SessionPtr& session, Variant& custom_data) {
  return delegation.Load(session, custom_data) || delegation.Success();
}

}  // namespace

bool UIWF::CheckDelegationEnabled(const SessionPtr& p_Session,
                                  ByRef<Variant> p_CustomData) noexcept {
  return guarded(
      "UIWF::CheckDelegationEnabled", false,
      [&] {
        auto delegation = create<BorgDelegation>(progid::BorgDelegation);
        // Without a loadable delegation record the answer is simply "not enabled".
        return delegation->Load(p_Session, *p_CustomData) && delegation->DelegationEnabled();
      },
      Track::kSuccess);
}

bool UIWF::GetBorgDelegationData(const SessionPtr& p_Session, ByRef<Variant> p_BorgID,
                                 ByRef<Variant> p_SysUserID, ByRef<Variant> p_DelegateeID,
                                 ByRef<Variant> p_DelegateeName, ByRef<Variant> p_DelegateeLoginID,
                                 ByRef<Variant> p_DelegateStartDate,
                                 ByRef<Variant> p_DelegateEndDate, ByRef<Variant> p_Enabled,
                                 ByRef<Variant> p_CustomData) noexcept {
  return guarded(
      "UIWF::GetBorgDelegationData", false,
      [&] {
        auto delegation = create<BorgDelegation>(progid::BorgDelegation);
        check(*delegation, load_delegation(*delegation, p_Session, *p_CustomData));
        // Written one by one: a failure part way leaves the earlier ones written.
        *p_BorgID = Variant(delegation->BorgID());
        *p_SysUserID = Variant(delegation->SysUserID());
        *p_DelegateeID = Variant(delegation->DelegateeID());
        *p_DelegateeName = Variant(delegation->DelegateeName());
        *p_DelegateeLoginID = Variant(delegation->DelegateeLoginID());
        *p_DelegateStartDate = Variant(delegation->DelegateStartDate());
        *p_DelegateEndDate = Variant(delegation->DelegateEndDate());
        *p_Enabled = Variant(delegation->Enabled());
        return true;
      },
      Track::kSuccess);
}

bool UIWF::SaveBorgDelegationData(const SessionPtr& p_Session, int32_t p_BorgID,
                                  int32_t p_SysUserID, int32_t p_DelegateeID,
                                  Date p_DelegateStartDate, Date p_DelegateEndDate, bool p_Enabled,
                                  ByRef<Variant> p_CustomData) noexcept {
  return guarded(
      "UIWF::SaveBorgDelegationData", false,
      [&] {
        auto delegation = create<BorgDelegation>(progid::BorgDelegation);
        check(*delegation, load_delegation(*delegation, p_Session, *p_CustomData));
        delegation->SetBorgID(p_BorgID);
        delegation->SetSysUserID(p_SysUserID);
        delegation->SetDelegateeID(p_DelegateeID);
        delegation->SetDelegateStartDate(p_DelegateStartDate);
        delegation->SetDelegateEndDate(p_DelegateEndDate);
        delegation->SetEnabled(p_Enabled);
        check(*delegation, delegation->Save(p_Session, *p_CustomData));
        return true;
      },
      Track::kSuccess);
}

RecordsetPtr UIWF::GetDelegateSearchResultsRs(const SessionPtr& p_Session,
                                              const std::string& p_sSearchName,
                                              const std::string& p_sSearchLogin,
                                              ByRef<Variant> p_CustomData) noexcept {
  return guarded(
      "UIWF::GetDelegateSearchResultsRs", RecordsetPtr(),
      [&] {
        auto delegation = create<BorgDelegation>(progid::BorgDelegation);
        RecordsetPtr found = delegation->GetDelegateSearchResults(p_Session, p_sSearchName,
                                                                  p_sSearchLogin, *p_CustomData);
        success_ = delegation->Success();
        check(*delegation, success_);
        return found;
      },
      Track::kSuccess);
}

}  // namespace kxui
