// UIUtility: configuration values, GUIDs and the settings list.
#pragma once

#include <memory>
#include <string>

#include "kxui/frame/byref.h"
#include "kxui/frame/facade.h"
#include "kxui/frame/recordset.h"

namespace kxui {

class UIUtility : public Facade {
 public:
  explicit UIUtility(std::shared_ptr<Runtime> runtime = Runtime::process());

  // True when the last GetList succeeded (the settings reader's own success flag).
  bool Success() const noexcept { return success_; }

  // Reads a setting through "KxUtility03.AppIni". True with the setting's text in
  // p_AppIniValue; False when the setting cannot be read (the reader's error is recorded
  // under "UIUtility::GetAppIniValue") — p_AppIniValue then keeps what was passed.
  bool GetAppIniValue(const SessionPtr& p_Session, const std::string& p_Name,
                      const std::string& p_Section, const std::string& p_AppName,
                      ByRef<Variant> p_AppIniValue, ByRef<Variant> p_CustomData = {}) noexcept;

  // A new GUID text from "KxUtility03.UserGUID"; "" on failure.
  std::string CreateUserGUID(ByRef<Variant> p_CustomData = {}) noexcept;

  // Every setting as a record set; Success is the reader's own flag. Nothing on failure.
  RecordsetPtr GetList(const SessionPtr& p_Session, ByRef<Variant> p_CustomData = {}) noexcept;
};

}  // namespace kxui
