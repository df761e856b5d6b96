#include "services/register.h"

#include <memory>

#include "kxui/business/progids.h"
#include "kxui/frame/services.h"
#include "services/address_formatter.h"
#include "services/app_ini.h"
#include "services/currency_formatter.h"
#include "services/date_formatter.h"
#include "services/kx_error.h"
#include "services/syslog_log.h"
#include "services/user_guid.h"

namespace kxui::services {

void RegisterDefaultServices(Runtime& runtime, const ServiceOptions& options) {
  runtime.Register(progid::KxError, [] { return std::make_shared<KxErrorInfo>(); });
  runtime.Register(progid::AppIni, [dir = options.ini_directory] {
    return std::make_shared<IniAppIni>(dir);
  });
  auto log = [ident = options.syslog_ident] { return std::make_shared<SyslogLog>(ident); };
  runtime.Register(progid::NTLog, log);
  runtime.Register(progid::ClassFactoryNTLog, log);
  runtime.Register(progid::UserGUID, [] { return std::make_shared<RandomUserGUID>(); });

  // One instance each: creating a formatter per call then costs a reference count.
  ObjectPtr dates = std::make_shared<IcuDateFormatter>();
  ObjectPtr money = std::make_shared<IcuCurrencyFormatter>();
  ObjectPtr addresses = std::make_shared<IcuAddressFormatter>();
  runtime.Register(service_class::kDateFormatter, [dates] { return dates; });
  runtime.Register(service_class::kCurrencyFormatter, [money] { return money; });
  runtime.Register(service_class::kAddressFormatter, [addresses] { return addresses; });
}

}  // namespace kxui::services
