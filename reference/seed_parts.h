// The parts of the seed that work over what is already stored: the organisations'
// accounts (addresses, cost centres, members' defaults, payment and shipping methods,
// delegations, catalogue views, announcements) and the documents around the orders
// (cost splits, files, receipts, a supplier that is down).
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "reference/database.h"

namespace kxui::reference::seed_parts {

// Runs once the organisations and their users exist. Every user gets the organisation's
// defaults and a spending limit; some store a card; each organisation's first manager
// hands approvals to the second for the week around today.
void Accounts(Database& db);

// Runs once requisitions and orders exist: splits of some requisition and order lines
// over cost centres, files on some requisitions and orders, receipts (every third order
// received in full, the next partly with a correction), and one supplier that is down.
void Documents(Database& db);

// Every table of the schema with its number of rows, by name.
std::vector<std::pair<std::string, int64_t>> TableRows(Database& db);

}  // namespace kxui::reference::seed_parts
