#include "reference/smart_forms.h"

#include <map>

#include "reference/errors.h"
#include "reference/purchase_order.h"
#include "reference/req_store.h"
#include "reference/rows.h"

namespace kxui::reference {

namespace {

constexpr int kReqLine = 1, kPOLine = 2;

std::vector<Variant> array_of(const Variant& v, const char* what) {
  if (v.is_empty() || v.is_missing()) return {};
  if (!v.is_array() || v.array().dims() != 1) {
    refuse(Refusal::kInvalidArgument, std::string("The ") + what + " must be a list.");
  }
  return v.array().values();
}

struct FieldRule {
  bool required;
  size_t max_length;
};

std::map<std::string, FieldRule> form_fields(soci::session& sql, int32_t smart_form_id) {
  std::map<std::string, FieldRule> out;
  soci::rowset<soci::row> rows =
      (sql.prepare << "SELECT field_name, required, max_length FROM smart_form_fields WHERE "
                      "smart_form_id = :f",
       soci::use(smart_form_id));
  for (const soci::row& r : rows) {
    out[text_of(r, 0)] = {int_of(r, 1) != 0, static_cast<size_t>(int_of(r, 2))};
  }
  if (out.empty()) {
    refuse(Refusal::kNotFound, "Smart form " + std::to_string(smart_form_id) + " does not exist.");
  }
  return out;
}

// Characters, not bytes, count toward a field's length.
size_t characters(const std::string& s) {
  size_t n = 0;
  for (unsigned char c : s) n += (c & 0xC0) != 0x80;
  return n;
}

}  // namespace

RecordsetPtr RefSFormReqItem::GetFormDescription(const SessionPtr& session, int32_t smart_form_id,
                                                 Variant&) {
  return answer("GetFormDescription", RecordsetPtr(), [&] {
    session_of(session);
    static constexpr Column kColumns[] = {{"FieldName", Kind::kText, 50},
                                          {"Label", Kind::kText, 100},
                                          {"Required", Kind::kBool},
                                          {"MaxLength", Kind::kInt}};
    return db().read([&](soci::session& sql) {
      form_fields(sql, smart_form_id);
      soci::rowset<soci::row> rows =
          (sql.prepare << "SELECT field_name, label, required, max_length FROM "
                          "smart_form_fields WHERE smart_form_id = :f ORDER BY seq_num",
           soci::use(smart_form_id));
      return to_recordset(rows, kColumns);
    });
  });
}

RecordsetPtr RefSFormReqItem::values(const Session& s, int kind, int32_t owner_id,
                                     int32_t line_num, int32_t smart_form_id) {
  static constexpr Column kColumns[] = {{"FieldName", Kind::kText, 50},
                                        {"Label", Kind::kText, 100},
                                        {"Value", Kind::kText, 2000}};
  return db().read([&](soci::session& sql) {
    if (kind == kReqLine) {
      load_req(sql, owner_id, s);
    } else {
      load_order(sql, owner_id, s);
    }
    form_fields(sql, smart_form_id);
    // Every field of the form, Null where the line holds no value.
    soci::rowset<soci::row> rows =
        (sql.prepare << "SELECT f.field_name, f.label, v.value FROM smart_form_fields f LEFT "
                        "JOIN smart_form_values v ON v.field_name = f.field_name AND "
                        "v.owner_kind = :k AND v.owner_id = :o AND v.line_num = :l AND "
                        "v.smart_form_id = f.smart_form_id WHERE f.smart_form_id = :f "
                        "ORDER BY f.seq_num",
         soci::use(kind), soci::use(owner_id), soci::use(line_num), soci::use(smart_form_id));
    return to_recordset(rows, kColumns);
  });
}

RecordsetPtr RefSFormReqItem::GetReqLineValues(const SessionPtr& session, int32_t req_id,
                                               int32_t line_num, int32_t smart_form_id,
                                               Variant&) {
  return answer("GetReqLineValues", RecordsetPtr(), [&] {
    return values(session_of(session), kReqLine, req_id, line_num, smart_form_id);
  });
}

RecordsetPtr RefSFormReqItem::GetPOLineValues(const SessionPtr& session, int32_t po_id,
                                              int32_t line_num, int32_t smart_form_id,
                                              Variant&) {
  return answer("GetPOLineValues", RecordsetPtr(), [&] {
    return values(session_of(session), kPOLine, po_id, line_num, smart_form_id);
  });
}

void RefSFormReqItem::save(const Session& s, int kind, int32_t owner_id, int32_t line_num,
                           int32_t smart_form_id, const Variant& names, const Variant& values) {
  const std::vector<Variant> n = array_of(names, "field names");
  const std::vector<Variant> v = array_of(values, "values");
  if (n.size() != v.size()) {
    refuse(Refusal::kInvalidArgument, "Each field name needs exactly one value.");
  }
  db().write([&](soci::session& sql) {
    int found = 0;
    if (kind == kReqLine) {
      const ReqRow req = load_req(sql, owner_id, s);
      require_editable(req, "change a line's form");
      require_not_locked_by_other(sql, db(), "req_locks", owner_id, s);
      sql << "SELECT COUNT(*) FROM req_lines WHERE req_id = :r AND line_num = :l AND "
             "smart_form_id = :f",
          soci::use(owner_id), soci::use(line_num), soci::use(smart_form_id), soci::into(found);
    } else {
      load_order(sql, owner_id, s);
      sql << "SELECT COUNT(*) FROM po_lines WHERE po_id = :p AND line_num = :l",
          soci::use(owner_id), soci::use(line_num), soci::into(found);
    }
    if (found == 0) refuse(Refusal::kNotFound, "The line does not exist or has another form.");
    const std::map<std::string, FieldRule> fields = form_fields(sql, smart_form_id);
    std::map<std::string, std::string> given;
    for (size_t i = 0; i < n.size(); ++i) {
      const std::string name = n[i].to_string();
      const auto rule = fields.find(name);
      if (rule == fields.end()) {
        refuse(Refusal::kInvalidArgument, "The form has no field \"" + name + "\".");
      }
      std::string text = v[i].is_null() || v[i].is_empty() ? std::string() : v[i].to_string();
      if (characters(text) > rule->second.max_length) {
        refuse(Refusal::kInvalidArgument, "\"" + name + "\" is longer than " +
                                              std::to_string(rule->second.max_length) +
                                              " characters.");
      }
      if (!given.emplace(name, std::move(text)).second) {
        refuse(Refusal::kInvalidArgument, "\"" + name + "\" is given twice.");
      }
    }
    for (const auto& [name, rule] : fields) {
      const auto it = given.find(name);
      if (rule.required && (it == given.end() || it->second.empty())) {
        refuse(Refusal::kInvalidArgument, "\"" + name + "\" needs a value.");
      }
    }
    sql << "DELETE FROM smart_form_values WHERE owner_kind = :k AND owner_id = :o AND "
           "line_num = :l",
        soci::use(kind), soci::use(owner_id), soci::use(line_num);
    for (const auto& [name, text] : given) {
      if (text.empty()) continue;
      sql << "INSERT INTO smart_form_values (owner_kind, owner_id, line_num, smart_form_id, "
             "field_name, value) VALUES (:k, :o, :l, :f, :n, :v)",
          soci::use(kind), soci::use(owner_id), soci::use(line_num), soci::use(smart_form_id),
          soci::use(name), soci::use(text);
    }
  });
}

bool RefSFormReqItem::SaveReqLineValues(const SessionPtr& session, int32_t req_id,
                                        int32_t line_num, int32_t smart_form_id,
                                        const Variant& names, const Variant& values, Variant&) {
  return answer("SaveReqLineValues", false, [&] {
    save(session_of(session), kReqLine, req_id, line_num, smart_form_id, names, values);
    return true;
  });
}

bool RefSFormReqItem::SavePOLineValues(const SessionPtr& session, int32_t po_id, int32_t line_num,
                                       int32_t smart_form_id, const Variant& names,
                                       const Variant& values, Variant&) {
  return answer("SavePOLineValues", false, [&] {
    save(session_of(session), kPOLine, po_id, line_num, smart_form_id, names, values);
    return true;
  });
}

}  // namespace kxui::reference
