// "KxCat03.PartSearch": the catalog's part search. The fixed numeric arguments of its
// members (part-number types, cursor types and locations, sort orders, search types)
// are the catalog's own enumerations, passed through as they come.
#pragma once

#include <cstdint>
#include <string>

#include "kxui/business/business_object.h"
#include "kxui/frame/recordset.h"
#include "kxui/frame/session.h"
#include "kxui/frame/variant.h"

namespace kxui::business {

class PartSearch : public virtual BusinessObject {
 public:
  // The detail rows of a part, priced in `currency_code` and described in `lang_code`.
  // `reserved1`/`reserved2` are "", `fixed_zero` 0 and `cursor_location` 3 as the UI
  // tier calls it.
  virtual RecordsetPtr LoadPartDetail(const SessionPtr& session, int32_t part_id,
                                      const std::string& reserved1, const std::string& reserved2,
                                      const std::string& currency_code,
                                      const std::string& lang_code, int32_t fixed_zero,
                                      int32_t cursor_location, int32_t doc_borg_id,
                                      Variant& custom_data) = 0;
  // The alternative views of a part.
  virtual RecordsetPtr LoadPartViews(const SessionPtr& session, int32_t part_id,
                                     const std::string& lang_code, int32_t cursor_type,
                                     int32_t cursor_location, Variant& custom_data) = 0;
  // A search with every parameter of the catalog browser in its public order, then the
  // document's organisation (0 for none). The number of rows found is RecordCount()
  // afterwards, and Success() tells whether the search ran.
  virtual RecordsetPtr SearchParts(
      const SessionPtr& session, const std::string& keyword_search, bool search_long_desc,
      int32_t part_num_type, const std::string& part_num, const std::string& part_num_ext,
      const std::string& supplier_name, int32_t supplier_id,
      const std::string& manufacturer_name, int32_t commodity_id, bool commodity_subtrees,
      const std::string& search_currency1, const std::string& search_currency2,
      const std::string& display_currency, const std::string& lang_code, const std::string& uom,
      int32_t cursor_type, int32_t cursor_location, int32_t sort_order, int32_t search_type,
      int32_t doc_borg_id, Variant& custom_data) = 0;
  virtual int32_t RecordCount() = 0;
  virtual bool Success() = 0;
  // The query text of the last search (for diagnosis).
  virtual std::string LastQueryString() = 0;
  virtual bool DebugMode() = 0;
  virtual void SetDebugMode(bool on) = 0;
};

}  // namespace kxui::business
