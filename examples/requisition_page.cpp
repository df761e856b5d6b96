// A page that lists the user's requisitions: the default platform services and a small
// in-memory business object registered in the process runtime, then UIReq.GetListPage.
// Prints the page as text; exits 1 when the page cannot be built.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "kxui/business/requisition.h"
#include "kxui/frame/runtime.h"
#include "kxui/frame/session.h"
#include "kxui/requisition/ui_req.h"
#include "services/register.h"

namespace {

// The business tier of this example: three requisitions, whatever the filters.
class InMemoryRequisition : public kxui::business::Requisition {
 public:
  bool Load(const kxui::SessionPtr&, int32_t, bool, kxui::Variant&) override { return false; }
  std::shared_ptr<kxui::business::RequisitionHeader> Header() override { return nullptr; }
  bool Success() override { return true; }
  kxui::ErrorInfoPtr GetError() override { return error_; }

  kxui::RecordsetPtr GetRequisitionList(const kxui::SessionPtr&, const std::string&,
                                        const std::string&, const std::string&,
                                        const std::string&, kxui::Variant&) override {
    auto rs = std::make_shared<kxui::Recordset>();
    rs->GetFields().Append("ReqID", kxui::adInteger);
    rs->GetFields().Append("ReqName", kxui::adVarWChar, 50);
    rs->GetFields().Append("CreateDate", kxui::adDate);
    rs->GetFields().Append("SubmitDate", kxui::adDate);
    rs->Open();
    const char* names[] = {"Office chairs", "Laptops", "Printer toner"};
    for (int32_t i = 0; i < 3; ++i) {
      rs->AddNew();
      rs->set_value(0, i + 1);
      rs->set_value(1, names[i]);
      rs->set_value(2, kxui::Date::from_civil(2024, 3, 4 + i, 9, 30));
      rs->set_value(3, kxui::Date::from_civil(2024, 3, 5 + i, 14, 0));
    }
    rs->Update();
    rs->MoveFirst();
    return rs;
  }

 private:
  kxui::ErrorInfoPtr error_ = std::make_shared<kxui::BasicErrorInfo>();
};

}  // namespace

int main() {
  // Settings come from <directory>/Dunmere.ini; two requisitions a page.
  const auto ini_dir = std::filesystem::temp_directory_path() / "kxui_requisition_page";
  std::filesystem::create_directories(ini_dir);
  std::ofstream(ini_dir / "Dunmere.ini") << "[Paging]\nPage Size = 2\n";

  auto runtime = kxui::Runtime::process();
  kxui::services::ServiceOptions options;
  options.ini_directory = ini_dir;
  kxui::services::RegisterDefaultServices(*runtime, options);
  auto business = std::make_shared<InMemoryRequisition>();
  runtime->Register("KxReq03.Requisition", [business] { return business; });

  auto session = std::make_shared<kxui::BasicSession>();  // en-US, stored dates' zone
  kxui::UIReq req;
  kxui::RecordsetPtr page = req.GetListPage(session, "jdoe", "", "CreateDate", "1,3", 0);
  std::filesystem::remove_all(ini_dir);
  if (!page) {
    std::fprintf(stderr, "GetListPage failed: %d %s: %s\n", req.Error()->Number(),
                 req.Error()->Source().c_str(), req.Error()->Description().c_str());
    return 1;
  }
  std::printf("Page %s of requisitions, %s in all\n",
              (*page)["UIDisplay_CurrentPage"].Value().to_string().c_str(),
              (*page)["UIDisplay_TotalRecords"].Value().to_string().c_str());
  for (; !page->IsEOF(); page->MoveNext()) {
    std::printf("%4s  %-16s created %-12s submitted %s\n",
                (*page)["ReqID"].Value().to_string().c_str(),
                (*page)["ReqName"].Value().to_string().c_str(),
                (*page)["UIDisplay_CreateDate"].Value().to_string().c_str(),
                (*page)["UIDisplay_SubmitDate"].Value().to_string().c_str());
  }
  return 0;
}
