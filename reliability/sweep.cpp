#include "reliability/sweep.h"

#include <algorithm>
#include <map>

#include "kxui/frame/errors.h"

namespace kxui::sweep {

namespace fault = testing::fault;

Baseline learn_baseline(const Operation& op, World& w) {
  Baseline b;
  for (int attempt = 0; attempt < 64; ++attempt) {
    auto inst = op.make(w);
    fault::arm(0, fault::Kind::kFailure, /*track_sites=*/true);
    b.outcome = inst->call(w);
    fault::disarm();
    b.calls = fault::calls();
    b.sites = fault::sites();
    // "Item cannot be found ... (Name)": the operation wants a column the data lacks.
    const std::string& d = b.outcome.description;
    if (b.outcome.number != err::kItemNotFound || d.empty() || d.back() != ')') break;
    const size_t open = d.rfind('(');
    std::string column = d.substr(open + 1, d.size() - open - 2);
    if (column.empty() || std::isdigit(static_cast<unsigned char>(column[0])) ||
        std::find(w.columns.begin(), w.columns.end(), column) != w.columns.end()) {
      break;
    }
    w.columns.push_back(column);
  }
  w.made.clear();
  w.made_types.clear();
  return b;
}

const Rule& rule_of(const Operation& op) {
  static const std::map<std::string, Rule> kRules = {
      // Sources the classes' contracts name instead of their own.
      {"UICat::SetDebugMode", {.source = "UICat::DebugMode"}},
      {"UICom::GetDataBySysUserID", {.source = "UICom::GetDatabySysUserID"}},
      {"UICom::GetDataBySysUserIDPayMethID", {.source = "UICom::GetDatabySysUserIDPayMethID"}},
      {"UIPO::GetPOName", {.source = "UIReq::GetPOName"}},
      {"UIReconPO::GetItemsRs", {.source = "UIReq::GetItemsRs"}},
      {"UIReconPO::UpdateItemsQtys", {.source = "UIReq::UpdateItemsQtys"}},
      {"UIReq::SubmitReq", {.source = "Requisition::SubmitReq"}},
      {"UIWF::GetHeaderRs", {.source = "UIReq::GetHeaderRs"}},
      {"UIWF::BuildDataStructure",
       {.source = "Workflow::BuildDataStructure", .writes_custom = true, .writes_outs = true}},
      // Out-arguments written one by one keep what they got before the failure.
      {"UIPO::GetLogPurchaseOrder", {.writes_outs = true}},
      {"UIPO::GetPOHeaderInfo", {.writes_outs = true}},
      {"UIWF::GetBorgDelegationData", {.writes_outs = true}},
      {"UICom::GetUserTimeZone", {.writes_outs = true}},  // the zone is set to 0
      // The address layout reports any failure of its own under its name.
      {"UICom::GetBillToData", {.component = "UIReq::FormatAddress"}},
      {"UICom::GetShipToData", {.component = "UIReq::FormatAddress"}},
      // Texts and figures a page still shows after a failure.
      {"UILang::LoadString", {.keeps_result = true}},
      {"UILang::FormatMsgText", {.keeps_result = true}},
      {"UILangExt::LoadString", {.keeps_result = true}},
      {"UILangExt::FormatMsgText", {.keeps_result = true}},
      {"UIReconPO::GetFormatCurrency", {.result = "\"0\""}},
      {"UIWF::GetApprovalCount", {.keeps_result = true}},
      // The customer name is best effort: its failure is recorded, the check goes on.
      {"UITools::QuickCheckReq", {.nested = "UITools::GetCustName"}},
      {"UITools::QuickCheck", {.nested = "UITools::GetCustName"}},
      {"UITools::GetPOStatus", {.nested = "UITools::GetCustName"}},
  };
  static const Rule kPlain;
  auto it = kRules.find(op.cls + "::" + op.name);
  return it == kRules.end() ? kPlain : it->second;
}

std::string expected_source(const Operation& op) {
  if (const char* s = rule_of(op).source) return s;
  // The extension shares the language class's sources.
  return (op.cls == "UILangExt" ? std::string("UILang") : op.cls) + "::" + op.name;
}

}  // namespace kxui::sweep
