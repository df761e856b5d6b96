// "KxUtility03.CursorDataAccess": runs a stored procedure of the business database.
#pragma once

#include <string>
#include <vector>

#include "kxui/business/business_object.h"
#include "kxui/frame/recordset.h"
#include "kxui/frame/session.h"
#include "kxui/frame/variant.h"

namespace kxui::business {

class CursorDataAccess : public virtual BusinessObject {
 public:
  // The rows the procedure selects, given its parameters in order.
  virtual RecordsetPtr RunSP(const SessionPtr& session, const std::string& procedure,
                             const std::vector<Variant>& params, Variant& custom_data) = 0;
};

}  // namespace kxui::business
