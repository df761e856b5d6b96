// The default AddressFormatter: the nine parts of an address laid out in the order the
// address's country uses.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "kxui/frame/services.h"

namespace kxui::services {

// Layouts by the address's country code (the viewer's country when the code is blank),
// street lines first unless noted:
//   US, CA   "City, ST 12345"              AU         "City ST 2000"
//   GB, IE   city, county and postcode on lines of their own
//   DE, AT, CH, FR, NL, BE and most of continental Europe  "12345 City", then the
//            state or province on its own line when given
//   IT       "00184 City PR"               ES         "28013 City", then the province
//            when it differs from the city
//   JP, CN   for a viewer reading Japanese or Chinese: postal code, region + city, then
//            the street lines (largest unit first); otherwise the US order
//   others   "City State Postcode"
// The country's name, in the viewer's language, ends the address when it is not the
// viewer's own country. Parts are trimmed; blank parts leave no gaps, the lines are
// packed from index 0 and the rest are empty. Throws Failure 5 (source
// "KxLocale03.AddressFormatter") for a locale identifier ICU does not know.
class IcuAddressFormatter : public AddressFormatter {
 public:
  std::array<std::string, kLines> FormatAddressLines(int32_t locale_id,
                                                     const AddressParts& parts) override;
};

}  // namespace kxui::services
