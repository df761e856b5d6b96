// "KxAttach03.*": files kept with requisitions, orders and their lines; and
// "KxReport03.*": the report catalogue and the data sources over requisitions and orders.
#pragma once

#include <string>
#include <vector>

#include "kxui/business/attachment.h"
#include "kxui/business/report.h"
#include "reference/object_base.h"

namespace kxui::reference {

// Whose files an attachment object serves.
enum class AttachmentOwner : int32_t { kReq = 1, kReqItem = 2, kPO = 3, kPOItem = 4 };

// The owner (and for line objects the line) must exist and belong to the caller's
// organisation, for reading and deleting as for adding. Bytes are stored hex-encoded in a
// text column so that both backends keep every byte, NULs included, unchanged.
class RefAttachment : public business::Attachment, public RefObject {
 public:
  RefAttachment(DatabasePtr db, AttachmentOwner owner)
      : RefObject(std::move(db), "Attachment"), owner_(owner) {}
  RecordsetPtr GetAttachmentList(const SessionPtr& session, int32_t owner_id, int32_t line_num,
                                 Variant& custom_data) override;
  bool AddAttachment(const SessionPtr& session, int32_t owner_id, int32_t line_num,
                     const std::string& file_name, const std::string& content,
                     int32_t& attachment_id, Variant& custom_data) override;
  bool GetAttachment(const SessionPtr& session, int32_t owner_id, int32_t line_num,
                     int32_t attachment_id, std::string& file_name, std::string& content,
                     Variant& custom_data) override;
  bool DeleteAttachment(const SessionPtr& session, int32_t owner_id, int32_t line_num,
                        int32_t attachment_id, Variant& custom_data) override;
  bool Success() override { return success_; }

 private:
  bool is_line() const {
    return owner_ == AttachmentOwner::kReqItem || owner_ == AttachmentOwner::kPOItem;
  }
  AttachmentOwner owner_;
};

// Every active user may run every catalogued report.
class RefReport : public business::Report, public RefObject {
 public:
  explicit RefReport(DatabasePtr db) : RefObject(std::move(db), "Report") {}
  RecordsetPtr GetReportList(const SessionPtr& session, Variant& custom_data) override;
  bool Load(const SessionPtr& session, int32_t report_id, Variant& custom_data) override;
  std::string ReportName() override { return name_; }
  std::string ReportClass() override { return class_; }
  bool Success() override { return success_; }

 private:
  std::string name_, class_;
};

class RefReportParam : public business::ReportParam, public RefObject {
 public:
  explicit RefReportParam(DatabasePtr db) : RefObject(std::move(db), "ReportParam") {}
  RecordsetPtr GetReportParams(const SessionPtr& session, int32_t report_id,
                               Variant& custom_data) override;
  bool Success() override { return success_; }
};

// "AR_Req": the requisitions of the session's organisation, optionally of one status.
class RefReqReport : public business::ReportData, public RefObject {
 public:
  explicit RefReqReport(DatabasePtr db) : RefObject(std::move(db), "AR_Req") {}
  RecordsetPtr GetReportData(const SessionPtr& session, const std::vector<Variant>& params,
                             Variant& custom_data) override;
  bool Success() override { return success_; }
};

// "AR_PO": the orders of the session's organisation created from a date (to a date when
// given, inclusive of that whole day).
class RefPOReport : public business::ReportData, public RefObject {
 public:
  explicit RefPOReport(DatabasePtr db) : RefObject(std::move(db), "AR_PO") {}
  RecordsetPtr GetReportData(const SessionPtr& session, const std::vector<Variant>& params,
                             Variant& custom_data) override;
  bool Success() override { return success_; }
};

// "AR_POByCommodity": order spending of the session's organisation per commodity and
// currency over the same date range as "AR_PO"; lines without a catalog part count under
// "Unknown".
class RefPOByCommodityReport : public business::ReportData, public RefObject {
 public:
  explicit RefPOByCommodityReport(DatabasePtr db) : RefObject(std::move(db), "AR_POByCommodity") {}
  RecordsetPtr GetReportData(const SessionPtr& session, const std::vector<Variant>& params,
                             Variant& custom_data) override;
  bool Success() override { return success_; }
};

}  // namespace kxui::reference
