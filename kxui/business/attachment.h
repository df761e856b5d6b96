// "KxAttach03.ReqAttachment", "KxAttach03.ReqItemAttachment", "KxAttach03.POAttachment"
// and "KxAttach03.POItemAttachment": the files attached to a requisition, a requisition
// line, an order or an order line. The four objects share one contract; the owner is
// named by its identifier (requisition or order) and, for the line objects, a line
// number (the header objects are given 0 and ignore it).
//
// A file is stored as its name and its bytes; the business tier keeps the bytes as they
// are and never interprets them.
#pragma once

#include <cstdint>
#include <string>

#include "kxui/business/business_object.h"
#include "kxui/frame/recordset.h"
#include "kxui/frame/session.h"
#include "kxui/frame/variant.h"

namespace kxui::business {

class Attachment : public virtual BusinessObject {
 public:
  // The files of an owner, one row per file, with at least "AttachmentID", "FileName",
  // "FileSize" (bytes) and "DateAttached" (zone 15). Answers through Success().
  virtual RecordsetPtr GetAttachmentList(const SessionPtr& session, int32_t owner_id,
                                         int32_t line_num, Variant& custom_data) = 0;
  // Stores a file for an owner; out: the new file's identifier.
  virtual bool AddAttachment(const SessionPtr& session, int32_t owner_id, int32_t line_num,
                             const std::string& file_name, const std::string& content,
                             int32_t& attachment_id, Variant& custom_data) = 0;
  // One file of an owner; out: its name and bytes. False when the owner has no such file.
  virtual bool GetAttachment(const SessionPtr& session, int32_t owner_id, int32_t line_num,
                             int32_t attachment_id, std::string& file_name, std::string& content,
                             Variant& custom_data) = 0;
  // Removes one file of an owner.
  virtual bool DeleteAttachment(const SessionPtr& session, int32_t owner_id, int32_t line_num,
                                int32_t attachment_id, Variant& custom_data) = 0;
  virtual bool Success() = 0;
};

}  // namespace kxui::business
