// A local supplier that answers the supplier-exchange requests by rules in its tables:
// prices and availability per part (sim_part_answers), order statuses per order
// (sim_order_answers), and outages per supplier (sim_supplier_outages) that make every
// request fail with the outage's code and text. A part or order it has no row for fails
// the request as a real supplier would. Also "KxUtility03.CursorDataAccess", which runs
// only the customer-name procedure the library calls.
#pragma once

#include <map>
#include <string>

#include "kxui/business/cursor_data_access.h"
#include "kxui/frame/runtime.h"
#include "reference/object_base.h"

namespace kxui::reference {

// Properties by dispatch id: written with one argument, read with none.
class PropertyBag : public Dispatch {
 public:
  int32_t GetIDOfName(std::string_view name) override;
  Variant Invoke(int32_t dispid, std::span<Variant> args) override;

 protected:
  // The names and ids the object publishes.
  virtual const std::map<std::string, int32_t, std::less<>>& names() const = 0;
  // Members other than plain properties; false when `dispid` is not one.
  virtual bool call(int32_t, std::span<Variant>, Variant&) { return false; }
  std::map<int32_t, Variant> values_;
};

class SimQuickCheckItem : public PropertyBag {
 protected:
  const std::map<std::string, int32_t, std::less<>>& names() const override;
};

class SimRequestHeader : public PropertyBag {
 protected:
  const std::map<std::string, int32_t, std::less<>>& names() const override;
};

// One answer: unit price, available quantity and status code, read by name.
class SimResponse : public PropertyBag {
 public:
  SimResponse(double price, double available, std::string status);

 protected:
  const std::map<std::string, int32_t, std::less<>>& names() const override;
};

class SimSupplierQuery : public PropertyBag {
 public:
  explicit SimSupplierQuery(DatabasePtr db) : db_(std::move(db)) {}

 protected:
  const std::map<std::string, int32_t, std::less<>>& names() const override;
  bool call(int32_t dispid, std::span<Variant> args, Variant& result) override;

 private:
  bool send_quick_check(std::span<Variant> args);
  bool send_order_status(std::span<Variant> args);
  // Records the failure the caller reads back; answers false.
  bool fail(const std::string& code, const std::string& text);
  // False (and the outage recorded) when the supplier is down.
  bool available(soci::session& sql, int32_t supplier_id);

  DatabasePtr db_;
};

class RefCursorDataAccess : public business::CursorDataAccess, public RefObject {
 public:
  explicit RefCursorDataAccess(DatabasePtr db) : RefObject(std::move(db), "CursorDataAccess") {}
  RecordsetPtr RunSP(const SessionPtr& session, const std::string& procedure,
                     const std::vector<Variant>& params, Variant& custom_data) override;
};

// Registers the simulated supplier's objects under their class names.
void RegisterSimulatedSupplier(Runtime& rt, const DatabasePtr& db);

}  // namespace kxui::reference
