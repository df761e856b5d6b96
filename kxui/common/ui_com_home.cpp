// UICom: what the home page shows: news, the EBO's default locale and today's date.
#include "kxui/business/account.h"
#include "kxui/business/progids.h"
#include "kxui/business/utils.h"
#include "kxui/common/ui_com.h"
#include "kxui/frame/display.h"
#include "kxui/frame/services.h"
#include "kxui/frame/settings.h"

namespace kxui {

using namespace business::record_class;

std::string UICom::GetEBODefaultLocale(int32_t EBOID, ByRef<Variant>) noexcept {
  return logged("UICom::GetEBODefaultLocale", std::string(), [&] {
    auto ebo = create_direct<business::EboRecord>(kEbo);
    ebo->SetEboID(EBOID);
    std::string locale = ebo->DefaultLangCode();
    locale += '_';
    locale += ebo->DefaultCountryCode();
    return locale;
  });
}

bool UICom::GetEboNews(int32_t p_lEBOID, ByRef<std::string> p_sEboNews, ByRef<Variant>) noexcept {
  return logged("UICom::GetEboNews", false, [&] {
    auto ebo = create_direct<business::EboRecord>(kEbo);
    ebo->SetEboID(p_lEBOID);
    *p_sEboNews = ebo->News();
    return true;
  });
}

bool UICom::GetBorgNews(int32_t p_lBorgID, int32_t p_lEBOID, ByRef<std::string> p_sBorgNews,
                        ByRef<Variant>) noexcept {
  return logged("UICom::GetBorgNews", false, [&] {
    auto borg = create_direct<business::BorgRecord>(kBorg);
    borg->SetEboID(p_lEBOID);
    borg->SetBorgID(p_lBorgID);
    *p_sBorgNews = borg->News();
    return true;
  });
}

bool UICom::GetHostNews(ByRef<std::string> p_sHostNews, ByRef<Variant>) noexcept {
  return logged("UICom::GetHostNews", false, [&] {
    auto host = create_direct<business::HostRecord>(kHost);
    // The record names its own host; selecting it loads the news.
    host->SetHostID(host->HostID());
    *p_sHostNews = host->News();
    return true;
  });
}

bool UICom::GetHomeDate(const SessionPtr& p_objSession, ByRef<std::string> p_sHomeDate,
                        ByRef<Variant> p_CustomData) noexcept {
  return logged("UICom::GetHomeDate", false, [&] {
    const Session& session = require(p_objSession);
    auto utils = create<business::Utils>(progid::Utils);
    const Date server_now = utils->GetServerDate(p_objSession, *p_CustomData).to_date();
    auto dates = create_direct<DateFormatter>(service_class::kDateFormatter);
    // Converted even in zone 15, where the conversion is the identity.
    const Date now = dates->ConvertTimeZone(kServerTimeZone, server_now, session.TimeZoneID());
    auto ini = create<AppIni>(progid::AppIni);
    const int32_t style = read_date_style(*ini, p_objSession, *p_CustomData);
    *p_sHomeDate = dates->FormatDateValue(session.LocaleID(), style, conv::date_part(Variant(now)));
    return true;
  });
}

}  // namespace kxui
