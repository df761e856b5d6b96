// UIAttach: files attached to requisitions, orders and their lines. Names and sizes are
// checked here, before the business tier sees a file, because a name becomes a file
// name wherever the file is later saved or downloaded.
#include "kxui/attach/ui_attach.h"

#include <string_view>

#include "kxui/business/attachment.h"
#include "kxui/business/progids.h"
#include "kxui/frame/display.h"

namespace kxui {

namespace {

bool has_path_or_control(std::string_view name) {
  if (name == "." || name.find("..") != std::string_view::npos) return true;
  for (unsigned char c : name) {
    if (c == '/' || c == '\\' || c == ':' || c < 0x20 || c == 0x7F) return true;
  }
  return false;
}

}  // namespace

UIAttach::UIAttach(std::shared_ptr<Runtime> runtime) : Facade("UIAttach", std::move(runtime)) {}

UIAttach::Owner UIAttach::owner_for(const SessionPtr& session, int32_t option, int32_t line_num) {
  switch (option) {
    case 1:
      return {create<business::Attachment>(progid::ReqAttachment), 0};
    case 2:
      return {create<business::Attachment>(progid::ReqItemAttachment), line_num};
    case 3:
      return {create<business::Attachment>(progid::POAttachment), 0};
    case 4:
      return {create<business::Attachment>(progid::POItemAttachment), line_num};
    default:
      raise_validation(session, msg::kInvalidAttachmentOption);
  }
}

void UIAttach::check_file_name(const SessionPtr& session, const std::string& name) {
  if (conv::trim(name).empty()) raise_validation(session, msg::kAttachmentNameRequired);
  if (has_path_or_control(name)) raise_validation(session, msg::kInvalidAttachmentName);
}

RecordsetPtr UIAttach::GetAttachmentListRs(const SessionPtr& p_Session, int32_t p_iOption,
                                           int32_t p_lID, int32_t p_lLineNum,
                                           ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIAttach::GetAttachmentListRs", RecordsetPtr(), [&] {
    const Owner owner = owner_for(p_Session, p_iOption, p_lLineNum);
    RecordsetPtr list =
        owner.files->GetAttachmentList(p_Session, p_lID, owner.line_num, *p_CustomData);
    check(owner.files, owner.files->Success());
    Recordset& source = require(list);
    auto ini = create<AppIni>(progid::AppIni);
    DisplayContext ctx(runtime(), require(p_Session),
                       read_date_style(*ini, p_Session, *p_CustomData));
    const DisplayColumn columns[] = {
        date_display("DateAttached"),
        computed_display("UIDisplay_FileSize", adVarWChar, 50,
                         [](const Recordset& src, DisplayContext& c) -> RowFiller {
                           const int32_t size = src.GetFields().index_of("FileSize");
                           return [size, &c](const Recordset& row) {
                             return Variant(c.amount_text(row.value(size).to_double()));
                           };
                         }),
    };
    return rebuild_for_display(source, columns, ctx);
  });
}

bool UIAttach::AddAttachment(const SessionPtr& p_Session, int32_t p_iOption, int32_t p_lID,
                             int32_t p_lLineNum, const std::string& p_sFileName,
                             const std::string& p_FileContent, ByRef<Variant> p_lAttachmentID,
                             ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIAttach::AddAttachment", false, [&] {
    const Owner owner = owner_for(p_Session, p_iOption, p_lLineNum);
    check_file_name(p_Session, p_sFileName);
    auto ini = create<AppIni>(progid::AppIni);
    const int32_t max_size = read_int_setting(*ini, p_Session, kMaxAttachmentSizeSetting,
                                              *p_CustomData, kDefaultMaxAttachmentSize);
    if (max_size < 0 || p_FileContent.size() > static_cast<size_t>(max_size)) {
      raise_validation(p_Session, msg::kAttachmentTooLarge);
    }
    int32_t attachment_id = 0;
    check(owner.files, owner.files->AddAttachment(p_Session, p_lID, owner.line_num, p_sFileName,
                                                  p_FileContent, attachment_id, *p_CustomData));
    *p_lAttachmentID = Variant(attachment_id);
    return true;
  });
}

bool UIAttach::GetAttachment(const SessionPtr& p_Session, int32_t p_iOption, int32_t p_lID,
                             int32_t p_lLineNum, int32_t p_lAttachmentID,
                             ByRef<Variant> p_sFileName, ByRef<Variant> p_FileContent,
                             ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIAttach::GetAttachment", false, [&] {
    const Owner owner = owner_for(p_Session, p_iOption, p_lLineNum);
    std::string name, content;
    check(owner.files, owner.files->GetAttachment(p_Session, p_lID, owner.line_num, p_lAttachmentID,
                                                  name, content, *p_CustomData));
    *p_sFileName = Variant(std::move(name));
    *p_FileContent = Variant(std::move(content));
    return true;
  });
}

bool UIAttach::DeleteAttachment(const SessionPtr& p_Session, int32_t p_iOption, int32_t p_lID,
                                int32_t p_lLineNum, int32_t p_lAttachmentID,
                                ByRef<Variant> p_CustomData) noexcept {
  return guarded("UIAttach::DeleteAttachment", false, [&] {
    const Owner owner = owner_for(p_Session, p_iOption, p_lLineNum);
    check(owner.files, owner.files->DeleteAttachment(p_Session, p_lID, owner.line_num,
                                                     p_lAttachmentID, *p_CustomData));
    return true;
  });
}

}  // namespace kxui
