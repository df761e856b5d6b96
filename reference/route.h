// The approval route of a requisition: steps in stages. The steps of one stage wait for
// approval together (a parallel chain shares stages with the route beside it); the next
// stage starts when every step of the current one is approved, and the requisition is
// approved, and its orders created, when no stage is left.
#pragma once

#include <cstdint>
#include <vector>

#include "reference/database.h"

namespace kxui::reference {

namespace step_status {
inline constexpr int32_t kWaiting = 1;
inline constexpr int32_t kPending = 2;  // with its approver now
inline constexpr int32_t kApproved = 3;
inline constexpr int32_t kRejected = 4;
inline constexpr int32_t kCancelled = 5;
}  // namespace step_status

namespace step_type {
inline constexpr int32_t kRule = 1;
inline constexpr int32_t kAdHoc = 2;
inline constexpr int32_t kChain = 3;
inline constexpr int32_t kParallel = 4;
const char* name(int32_t type);
}  // namespace step_type

// The approvers of `approver_id`'s chain for a requisition: the approver, then each
// manager in turn up to the first whose approval limit covers `total` (or the top).
std::vector<int32_t> approval_chain(soci::session& sql, int32_t approver_id, Currency total);

// The route the rules give (the requisitioner's manager chain): stored in place of the
// steps not yet acted on unless `preview`; returns the number of steps.
int32_t build_route(soci::session& sql, Database& db, int32_t req_id, bool preview);

// Starts the first waiting stage; with none, approves the requisition and creates its
// orders. Returns the number of orders created.
int32_t start_route(soci::session& sql, Database& db, int32_t req_id);

// Steps not yet acted on become cancelled.
void cancel_route(soci::session& sql, Database& db, int32_t req_id);

// The first stage that still has steps to act on (0 when none).
int32_t current_stage(soci::session& sql, int32_t req_id);

// Inserts steps for `approvers` from stage `first_stage` on, one stage each; when
// `shift` the stages from first_stage on move back to make room.
void insert_steps(soci::session& sql, int32_t req_id, const std::vector<int32_t>& approvers,
                  int32_t first_stage, int32_t type, bool shift);

}  // namespace kxui::reference
