// Receipt validation: typed carton and line quantities (any text, in any of a few
// locales) through UIRcv::SubmitReceipt with the default services. The call never
// throws; a receipt is recorded only when every line passed the checks, and then the
// numbers written into the form obey them.
#include <cstdint>
#include <memory>
#include <string>

#include <fuzzer/FuzzedDataProvider.h>

#include "fuzz/fuzz_support.h"
#include "kxui/business/po_receipt.h"
#include "kxui/business/progids.h"
#include "kxui/frame/recordset.h"
#include "kxui/frame/runtime.h"
#include "kxui/receiving/ui_rcv.h"
#include "services/register.h"

namespace {

using kxui::Variant;

class AcceptingReceipt : public kxui::business::POReceipt {
 public:
  kxui::ErrorInfoPtr GetError() override { return error_; }
  bool Success() override { return true; }
  kxui::RecordsetPtr GetReceiveList(const kxui::SessionPtr&, kxui::Array&) override { return {}; }
  kxui::RecordsetPtr GetPOItems(const kxui::SessionPtr&, kxui::Array&) override { return {}; }
  kxui::RecordsetPtr GetReceiptHdr(const kxui::SessionPtr&, kxui::Array&) override { return {}; }
  kxui::RecordsetPtr GetReceiptHdrList(const kxui::SessionPtr&, kxui::Array&) override {
    return {};
  }
  kxui::RecordsetPtr GetReceiptItems(const kxui::SessionPtr&, kxui::Array&) override {
    return {};
  }
  kxui::RecordsetPtr GetReceiptItemList(const kxui::SessionPtr&, kxui::Array&) override {
    return {};
  }
  int32_t SubmitReceipt(const kxui::SessionPtr&, const kxui::RecordsetPtr&,
                        const kxui::RecordsetPtr&, kxui::Array&) override {
    return 77;
  }

 private:
  kxui::ErrorInfoPtr error_ = std::make_shared<kxui::BasicErrorInfo>();
};

std::shared_ptr<kxui::Runtime> make_runtime() {
  auto rt = std::make_shared<kxui::Runtime>();
  kxui::services::RegisterDefaultServices(*rt, {});
  rt->Register(kxui::progid::POReceipt, [] { return std::make_shared<AcceptingReceipt>(); });
  return rt;
}

Variant typed(FuzzedDataProvider& in) {
  if (in.ConsumeIntegralInRange(0, 15) == 0) return Variant::null();
  return Variant(in.ConsumeRandomLengthString(24));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const std::shared_ptr<kxui::Runtime> runtime = make_runtime();
  static const int32_t kLocales[] = {1033, 1031, 1036, 3082};
  FuzzedDataProvider in(data, size);
  auto session = std::make_shared<kxui::BasicSession>();
  session->locale_id = in.PickValueInArray(kLocales);

  auto header = std::make_shared<kxui::Recordset>();
  header->GetFields().Append("UIDisplay_CartonCnt", kxui::adVariant);
  header->GetFields().Append("CartonCnt", kxui::adInteger);
  header->Open();
  header->AddNew();
  header->set_value(0, typed(in));
  header->Update();

  auto lines = std::make_shared<kxui::Recordset>();
  for (const char* name : {"UIDisplay_ReceivedQty", "UIDisplay_PackingSlipQty", "Comments"}) {
    lines->GetFields().Append(name, kxui::adVariant);
  }
  for (const char* name : {"ReceivedQty", "PackingSlipQty", "ReceivedToDateQty"}) {
    lines->GetFields().Append(name, kxui::adDouble);
  }
  lines->Open();
  const int rows = in.ConsumeIntegralInRange(0, 6);
  for (int r = 0; r < rows; ++r) {
    lines->AddNew();
    lines->set_value(0, typed(in));
    lines->set_value(1, typed(in));
    lines->set_value(2, in.ConsumeBool() ? Variant::null() : Variant(in.ConsumeRandomLengthString(4)));
    lines->set_value(5, Variant(static_cast<double>(in.ConsumeIntegralInRange(0, 50))));
    lines->Update();
  }
  if (rows > 0) lines->MoveFirst();

  kxui::UIRcv ui(runtime);
  const int32_t id = ui.SubmitReceipt(session, header, lines);
  if (id != 0) {
    FUZZ_CHECK(id == 77);
    for (int32_t r = 1; r <= rows; ++r) {
      lines->SetAbsolutePosition(r);
      const double received = lines->value(3).to_double();
      const double packing = lines->value(4).to_double();
      const double to_date = lines->value(5).to_double();
      FUZZ_CHECK(packing >= 0);
      FUZZ_CHECK(received >= 0 || -received <= to_date);
    }
  } else {
    FUZZ_CHECK(ui.Error()->Number() != 0);
  }
  return 0;
}
