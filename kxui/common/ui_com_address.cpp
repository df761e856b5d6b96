// UICom: one bill-to or ship-to address as a one-row record set with the address laid
// out for display.
#include <type_traits>

#include "kxui/business/progids.h"
#include "kxui/business/reference_data.h"
#include "kxui/common/ui_com.h"
#include "kxui/frame/display.h"

namespace kxui {

template <class T>
RecordsetPtr UICom::address_data(std::string_view source, std::string_view progid,
                                 std::string_view prefix, const SessionPtr& session, int32_t id,
                                 Variant& custom_data) noexcept {
  return guarded(source, RecordsetPtr(), [&] {
    auto obj = create<T>(progid);
    check(obj, obj->Load(session, id, custom_data));
    const std::string p(prefix);
    auto rs = std::make_shared<Recordset>();
    Fields& fields = rs->GetFields();
    fields.Append(p + "ID", adDouble);
    fields.Append("Display" + p + "Address", adVarWChar, 300);
    fields.Append(p + "ContactName", adVarWChar, 35);
    fields.Append(p + "Telephone", adVarWChar, 35);
    fields.Append(p + "Email", adVarWChar, 80);
    fields.Append(p + "Fax", adVarWChar, 35);
    fields.Append(p + "ContactLocation", adVarWChar, 35);
    constexpr bool kShipTo = std::is_same_v<T, business::ShipTo>;
    if constexpr (kShipTo) fields.Append("Taxable", adBoolean);
    rs->Open();
    rs->AddNew();
    rs->set_value(0, Variant(obj->ID()));
    rs->set_value(1,
                  Variant(FormatAddress(runtime(), require(session).LocaleID(), obj->Address())));
    rs->set_value(2, Variant(obj->ContactName()));
    rs->set_value(3, Variant(obj->Telephone()));
    rs->set_value(4, Variant(obj->Email()));
    rs->set_value(5, Variant(obj->Fax()));
    rs->set_value(6, Variant(obj->ContactLocation()));
    if constexpr (kShipTo) rs->set_value(7, Variant(obj->Taxable()));
    rs->Update();
    return rs;
  });
}

RecordsetPtr UICom::GetBillToData(const SessionPtr& p_Session, int32_t p_BillToID,
                                  ByRef<Variant> p_CustomData) noexcept {
  return address_data<business::BillTo>("UICom::GetBillToData", progid::BillTo, "BillTo", p_Session,
                                        p_BillToID, *p_CustomData);
}

RecordsetPtr UICom::GetShipToData(const SessionPtr& p_Session, int32_t p_ShipToID,
                                  ByRef<Variant> p_CustomData) noexcept {
  return address_data<business::ShipTo>("UICom::GetShipToData", progid::ShipTo, "ShipTo", p_Session,
                                        p_ShipToID, *p_CustomData);
}

}  // namespace kxui
