// The requisition rules the business objects share: statuses, loading, locks, the log,
// totals, currency conversion and the orders an approved requisition produces. All run
// inside the caller's Database::read or write.
#pragma once

#include <cstdint>
#include <string>

#include "kxui/frame/session.h"
#include "kxui/frame/variant.h"
#include "reference/database.h"

namespace kxui::reference {

namespace req_status {
inline constexpr int32_t kOpen = 1;
inline constexpr int32_t kSubmitted = 2;  // waiting for approval
inline constexpr int32_t kRejected = 3;
inline constexpr int32_t kWithdrawn = 4;  // taken back from approval by its requisitioner
inline constexpr int32_t kApproved = 5;   // orders created
inline constexpr int32_t kCancelled = 7;
// The statuses in which lines and header may change.
bool editable(int32_t status);
const char* name(int32_t status);
}  // namespace req_status

struct ReqRow {
  int32_t req_id = 0;
  std::string name;
  int32_t status = 0;
  int32_t requisitioner_id = 0;
  int32_t borg_id = 0;
  std::string currency_code;
};

// The requisition as `caller` may reach it: refuses with "not found" when there is none
// and "not allowed" when it is another organisation's. Every operation that takes a
// requisition's id from a caller loads it this way: an id a page shows is no permission.
ReqRow load_req(soci::session& sql, int32_t req_id, const Session& caller);
// The same without the organisation check, for steps inside a change whose requisition
// was already loaded for its caller.
ReqRow find_req(soci::session& sql, int32_t req_id);
// Refuses unless the status allows editing; `action` names what was refused.
void require_editable(const ReqRow& req, const std::string& action);
// Refuses unless the session user is the requisitioner.
void require_requisitioner(const ReqRow& req, const Session& session, const std::string& action);

// Who holds a lock taken in `session`: each session of this tier apart, any other kind
// of Session by its default value.
int32_t lock_holder(const Session& session);

// Locks are rows (req_locks / po_locks) owned by a session (user and lock_holder)
// until they expire. Taking a lock the session holds renews it.
void take_lock(soci::session& sql, Database& db, const char* table, int32_t id,
               const Session& session);
bool holds_lock(soci::session& sql, Database& db, const char* table, int32_t id,
                const Session& session);
// Refuses when another session holds an unexpired lock on the row.
void require_not_locked_by_other(soci::session& sql, Database& db, const char* table, int32_t id,
                                 const Session& session);
void release_locks(soci::session& sql, const char* table, const Session& session);

void log_req(soci::session& sql, Database& db, int32_t req_id, int32_t user_id,
             const std::string& action, const std::string& comments);

// `amount` in `from` as `to` at the rates in force on `at` (rates are units per US dollar).
double convert_currency(soci::session& sql, double amount, const std::string& from,
                        const std::string& to, Date at);

struct Totals {
  Currency sub_total, tax, total;
};
Totals req_totals(soci::session& sql, Database& db, int32_t req_id, const std::string& currency);

// One purchase order per supplier of the requisition's lines; returns how many.
int32_t create_orders(soci::session& sql, Database& db, int32_t req_id);

// Refuses a text longer than `max` characters (not bytes): stored texts fit the columns
// of the record sets pages receive, on every backend.
void require_length(const std::string& text, size_t max, const std::string& what);

// The display name of a user; refuses when there is none.
std::string user_name(soci::session& sql, int32_t user_id);

}  // namespace kxui::reference
