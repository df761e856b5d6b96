// The default UserGUID ("KxUtility03.UserGUID"): random (version 4) GUIDs.
#pragma once

#include <memory>
#include <string>

#include "kxui/frame/services.h"
#include "services/kx_error.h"

namespace kxui::services {

class RandomUserGUID : public UserGUID {
 public:
  // "{XXXXXXXX-XXXX-4XXX-YXXX-XXXXXXXXXXXX}": 122 random bits from the system's entropy
  // source (so forked processes never repeat each other), upper-case hex, Y one of
  // 8, 9, A, B.
  std::string CreateGUID(Variant& custom_data) override;
  ErrorInfoPtr GetError() override { return error_; }

 private:
  std::shared_ptr<KxErrorInfo> error_ = std::make_shared<KxErrorInfo>();
};

}  // namespace kxui::services
