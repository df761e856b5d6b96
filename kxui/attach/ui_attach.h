// UIAttach: the files attached to a requisition, a requisition line, an order or an order
// line. The owner is chosen by an option value:
//   1 requisition        "KxAttach03.ReqAttachment"      (p_lID: requisition)
//   2 requisition line   "KxAttach03.ReqItemAttachment"  (p_lID: requisition, p_lLineNum)
//   3 order              "KxAttach03.POAttachment"       (p_lID: order)
//   4 order line         "KxAttach03.POItemAttachment"   (p_lID: order, p_lLineNum)
// For options 1 and 3 the business object is given line number 0 whatever the page
// passes. Any other option fails with message 11650 before any business object is made.
//
// Every operation creates its business object through the ClassFactory, once per call,
// and releases it before it returns. On failure it records the error under
// "UIAttach::<operation>" and returns False or Nothing; in/out arguments are written only
// on success. A False answer of the business object records that object's own error.
// The class has no Success property.
//
// A file's bytes travel as a string and are never looked into: no type, encoding or
// content check is made here; only the name and the size are checked.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "kxui/frame/byref.h"
#include "kxui/frame/facade.h"
#include "kxui/frame/messages.h"
#include "kxui/frame/recordset.h"
#include "kxui/frame/settings.h"

namespace kxui {

namespace business {
class Attachment;
}  // namespace business

namespace msg {
inline constexpr Message kInvalidAttachmentOption{
    11650, "Invalid attachment option. The option must be 1, 2, 3 or 4."};
inline constexpr Message kAttachmentNameRequired{11651, "A file name is required."};
inline constexpr Message kInvalidAttachmentName{
    11652, "Invalid file name. A file name may not contain a path, \"..\" or control characters."};
inline constexpr Message kAttachmentTooLarge{
    11653, "The file is larger than the maximum attachment size."};
}  // namespace msg

// The largest file accepted, in bytes: setting "Max Attachment Size" (section
// "Attachments", application "Dunmere"), 10 MB when it cannot be read; a value that is
// not a number fails the call (13).
inline constexpr SettingKey kMaxAttachmentSizeSetting{"Max Attachment Size", "Attachments",
                                                      "Dunmere"};
inline constexpr int32_t kDefaultMaxAttachmentSize = 10 * 1024 * 1024;

class UIAttach : public Facade {
 public:
  explicit UIAttach(std::shared_ptr<Runtime> runtime = Runtime::process());

  // The owner's files, every row, with "UIDisplay_DateAttached" (text 100, the date
  // display rule) and "UIDisplay_FileSize" (text 50, the size in bytes in the user's
  // locale) appended; positioned at the first row. Nothing on failure.
  RecordsetPtr GetAttachmentListRs(const SessionPtr& p_Session, int32_t p_iOption, int32_t p_lID,
                                   int32_t p_lLineNum, ByRef<Variant> p_CustomData = {}) noexcept;

  // Attaches a file. Checked in this order before anything is stored: the option (11650);
  // the name, which must not be empty or blank (11651) and must be a bare file name —
  // no "/", "\" or ":", not "." and nothing containing "..", no control characters
  // (11652); the size, at most the configured maximum (11653; an empty file is
  // accepted). True with the new file's identifier (Int32) in p_lAttachmentID.
  bool AddAttachment(const SessionPtr& p_Session, int32_t p_iOption, int32_t p_lID,
                     int32_t p_lLineNum, const std::string& p_sFileName,
                     const std::string& p_FileContent, ByRef<Variant> p_lAttachmentID,
                     ByRef<Variant> p_CustomData = {}) noexcept;

  // Reads one file of the owner: True with its name and bytes (Strings) in p_sFileName
  // and p_FileContent.
  bool GetAttachment(const SessionPtr& p_Session, int32_t p_iOption, int32_t p_lID,
                     int32_t p_lLineNum, int32_t p_lAttachmentID, ByRef<Variant> p_sFileName,
                     ByRef<Variant> p_FileContent, ByRef<Variant> p_CustomData = {}) noexcept;

  // Removes one file of the owner. True; False on failure.
  bool DeleteAttachment(const SessionPtr& p_Session, int32_t p_iOption, int32_t p_lID,
                        int32_t p_lLineNum, int32_t p_lAttachmentID,
                        ByRef<Variant> p_CustomData = {}) noexcept;

 private:
  // The business object of an option, with the line number it is to be given.
  struct Owner {
    std::shared_ptr<business::Attachment> files;
    int32_t line_num;
  };
  Owner owner_for(const SessionPtr& session, int32_t option, int32_t line_num);
  // Raises the message of the first rule the name breaks.
  void check_file_name(const SessionPtr& session, const std::string& name);
};

}  // namespace kxui
