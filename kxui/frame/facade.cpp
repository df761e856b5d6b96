#include "kxui/frame/facade.h"

#include "kxui/business/progids.h"
#include "kxui/frame/ntlog.h"

namespace kxui {

namespace {
std::atomic<int64_t> g_live_instances{0};
}  // namespace

int64_t Facade::live_instances() noexcept { return g_live_instances.load(); }

Facade::Facade(std::string class_name, std::shared_ptr<Runtime> runtime,
               std::string_view source_class)
    : runtime_(runtime ? std::move(runtime) : Runtime::process()),
      class_name_(std::move(class_name)) {
  ++g_live_instances;
  try {
    factory();
    error_ = query<ErrorInfo>(create_object(progid::KxError));
  } catch (...) {
    if (!error_) error_ = std::make_shared<BasicErrorInfo>();
    std::string source(source_class.empty() ? std::string_view(class_name_) : source_class);
    record_current_failure(source + "::Class_Initialize");
  }
}

Facade::~Facade() {
  error_.reset();
  factory_.reset();
  --g_live_instances;
}

ClassFactory& Facade::factory() {
  if (!factory_) {
    if (runtime_->IsRegistered(kClassFactoryClass)) {
      factory_ = create_as<ClassFactory>(*runtime_, kClassFactoryClass);
    } else {
      factory_ = std::make_shared<RuntimeClassFactory>(runtime_);
    }
  }
  return *factory_;
}

ObjectPtr Facade::create_object(std::string_view progid) {
  ObjectPtr out;
  factory().CreateObjectByProgID(std::string(progid), 0, out);
  if (!out) fail(err::kCannotCreateObject, progid, progid);
  return out;
}

void Facade::raise_business_error(ErrorSource& obj) {
  ErrorInfoPtr e = obj.GetError();
  if (!e) fail(err::kObjectNotSet);
  // Number, Source and Description, read in that order.
  int32_t number = e->Number();
  std::string source = e->Source();
  throw Failure(number, std::move(source), e->Description());
}

void Facade::raise_validation(const SessionPtr& session, const msg::Message& m) {
  std::string english(m.english);
  std::string text = error_ ? error_->GetMessageText(session, m.number, english, Array())
                            : english;
  throw Failure(err::kObjectErrorBase + m.number, std::string(), std::move(text));
}

void Facade::SetError(std::string_view source, int32_t number, std::string_view description,
                      std::string_view err_source) noexcept {
  try {
    if (!error_) return;
    error_->SetNumber(number);
    error_->SetDescription(std::string(description));
    std::string full(source);
    full += ' ';
    full += err_source;
    error_->SetSource(std::move(full));
  } catch (...) {
    // Recording must never become a failure of its own.
  }
}

void Facade::LogError() noexcept {
  try {
    auto log = create<NTLog>(progid::NTLog);
    log->SetEventType(1);
    log->SetMessage(error_->Source() + " :: " + error_->Description());
    log->WriteEntry();
  } catch (...) {
    // The log is best effort.
  }
}

void Facade::record_current_failure(std::string_view source) noexcept {
  try {
    throw;
  } catch (const Failure& f) {
    SetError(source, f.number(), f.description(), f.source());
  } catch (const std::bad_alloc&) {
    SetError(source, err::kOutOfMemory, err::text(err::kOutOfMemory), {});
  } catch (const std::exception& e) {
    SetError(source, err::kAutomationError, e.what(), {});
  } catch (...) {
    SetError(source, err::kInternalError, err::text(err::kInternalError), {});
  }
}

}  // namespace kxui
