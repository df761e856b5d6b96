// Adding items to a requisition: fast add, favourites, special requests and the catalog
// with its commodity tree. Requisition 0 means "a new one": the first item creates it.
#include "apps/portal/portal.h"

namespace portal {

using kxui::RecordsetPtr;
using kxui::Variant;

namespace {

constexpr int32_t kSearchRows = 25;

std::string input(const char* name, const char* label, const std::string& value = "",
                  const char* size = "12") {
  return "<div class=\"row\"><label for=\"" + std::string(name) + "\">" + label +
         "</label><input id=\"" + name + "\" name=\"" + name + "\" size=\"" + size +
         "\" value=\"" + esc(value) + "\"></div>";
}

// The commodity tree down to `comm`: its path, then its children as links.
std::string commodity_tree(Ctx& c, const std::string& base, int32_t comm) {
  auto cat = c.hub().Cat();
  std::string out = "<div class=\"card\"><h2>Browse by commodity</h2><p><a href=\"" + base +
                    "\">All commodities</a>";
  if (comm > 0) {
    RecordsetPtr path = cat->GetPath(c.session(), comm, 0);
    if (path && path->RecordCount() > 0) {
      for (path->MoveFirst(); !path->IsEOF(); path->MoveNext()) {
        out += " › <a href=\"" + base + "?comm=" + esc(field(*path, "CommodityID")) + "\">" +
               esc(field(*path, "Name")) + "</a>";
      }
    }
  }
  out += "</p>";
  RecordsetPtr children = cat->GetChild(c.session(), comm, 0);
  if (!children) return out + "<div class=\"error\">" + esc(failure_text(*cat)) + "</div></div>";
  if (children->RecordCount() > 0) {
    out += "<ul class=\"tree\">";
    for (children->MoveFirst(); !children->IsEOF(); children->MoveNext()) {
      out += "<li><a href=\"" + base + "?comm=" + esc(field(*children, "CommodityID")) + "\">" +
             esc(field(*children, "Name")) + "</a></li>";
    }
    out += "</ul>";
  }
  return out + "</div>";
}

std::string search_results(Ctx& c, int32_t req_id, int32_t comm, const std::string& keyword) {
  if (comm <= 0 && keyword.empty()) return "";
  auto cat = c.hub().Cat();
  const auto s = c.session();
  RecordsetPtr parts = cat->ListParts(s, keyword, false, 0, "", "", "", 0, "", comm, true, "", "",
                                      s->CurrencyCode(), s->LangCode(), "", 0);
  if (!parts) return "<div class=\"error\">" + esc(failure_text(*cat)) + "</div>";
  std::string out = "<h2>Catalog: " + std::to_string(parts->RecordCount()) + " parts</h2>";
  if (parts->RecordCount() == 0) return out + "<p class=\"empty\">No part matches.</p>";
  out += "<table><thead><tr><th>Part</th><th>Description</th><th>Supplier</th><th>Unit</th>"
         "<th class=\"num\">Price</th><th>Add</th></tr></thead><tbody>";
  int32_t shown = 0;
  for (parts->MoveFirst(); !parts->IsEOF() && shown < kSearchRows; parts->MoveNext(), ++shown) {
    out += "<tr><td>" + esc(field(*parts, "SupplierPartNum")) + "</td><td>" +
           esc(field(*parts, "Description")) + "</td><td>" + esc(field(*parts, "SupplierName")) +
           "</td><td>" + esc(field(*parts, "UOMID")) + "</td><td class=\"num\">" +
           esc(field(*parts, "UnitPrice")) + " " + esc(field(*parts, "CurrencyCode")) +
           "</td><td><form class=\"inline\" method=\"post\" action=\"/req/" +
           std::to_string(req_id) + "/add/fast\">" + csrf_field(c.csrf()) +
           "<input type=\"hidden\" name=\"supplier\" value=\"" + esc(field(*parts, "SupplierID")) +
           "\"><input type=\"hidden\" name=\"part\" value=\"" +
           esc(field(*parts, "SupplierPartNum")) + "\"><input name=\"qty\" size=\"4\" value=\"1\">"
           " <button class=\"secondary\">Add</button></form></td></tr>";
  }
  out += "</tbody></table>";
  if (parts->RecordCount() > kSearchRows) {
    out += "<p class=\"muted\">Showing the first " + std::to_string(kSearchRows) +
           "; narrow the search to see others.</p>";
  }
  return out;
}

void add_page(Ctx& c, const std::string& error = "", int status = 200) {
  const int32_t id = c.path_int(1);
  const std::string base = "/req/" + std::to_string(id) + "/add";
  const auto s = c.session();
  auto com = c.hub().Com();
  // These option lists are built by the library without escaping, from the suppliers,
  // units and currencies of the reference data, which only administrators maintain.
  std::string suppliers, uoms, currencies;
  com->GetSupplierList2(s, suppliers, c.int_param("supplier"));
  com->GetUOMList2(s, uoms, "EA");
  com->GetCurrencyList2(s, currencies, s->CurrencyCode());

  std::string body;
  if (id > 0) {
    body += "<p><a href=\"/req/" + std::to_string(id) + "\">Back to the requisition</a></p>";
  } else {
    body += "<p class=\"muted\">The first item you add starts a new requisition.</p>";
  }
  body += "<div class=\"grid\"><div class=\"card\"><h2>Fast add</h2><form method=\"post\" "
          "action=\"" + base + "/fast\">" + csrf_field(c.csrf()) +
          "<div class=\"row\"><label for=\"fa_supplier\">Supplier</label><select id=\"fa_supplier\" "
          "name=\"supplier\">" + suppliers + "</select></div>" +
          input("part", "Part number") + input("qty", "Quantity", "1", "6") +
          "<div class=\"row\"><button id=\"fastadd\">Add</button></div></form></div>";
  body += "<div class=\"card\"><h2>Special request</h2><form method=\"post\" action=\"" + base +
          "/special\">" + csrf_field(c.csrf()) + input("description", "Description", "", "30") +
          input("supplier_name", "Supplier", "", "30") + input("qty", "Quantity", "1", "6") +
          "<div class=\"row\"><label for=\"uom\">Unit</label><select id=\"uom\" name=\"uom\">" +
          uoms + "</select></div>" + input("price", "Estimated price", "", "10") +
          "<div class=\"row\"><label for=\"currency\">Currency</label><select id=\"currency\" "
          "name=\"currency\">" + currencies + "</select></div>"
          "<div class=\"row\"><button>Add request</button></div></form></div></div>";

  auto req = c.hub().Req();
  RecordsetPtr favs = req->GetFavoritesListPage(s, c.int_param("favpage"));
  body += "<h2>Favourites</h2>";
  if (!favs) {
    body += "<div class=\"error\">" + esc(failure_text(*req)) + "</div>";
  } else if (favs->RecordCount() == 0) {
    body += "<p class=\"empty\">No favourites yet.</p>";
  } else {
    body += "<table><thead><tr><th>Part</th><th>Description</th><th>Supplier</th>"
            "<th class=\"num\">Price</th><th>Add</th></tr></thead><tbody>";
    for (favs->MoveFirst(); !favs->IsEOF(); favs->MoveNext()) {
      body += "<tr><td>" + esc(field(*favs, "SupplierPartNum")) + "</td><td>" +
              esc(field(*favs, "Description")) + "</td><td>" + esc(field(*favs, "SupplierName")) +
              "</td><td class=\"num\">" + esc(field(*favs, "UIDisplay_UnitPrice")) +
              "</td><td><form class=\"inline\" method=\"post\" action=\"" + base + "/favorite\">" +
              csrf_field(c.csrf()) + "<input type=\"hidden\" name=\"part\" value=\"" +
              esc(field(*favs, "PartBaseID")) + "\"><input name=\"qty\" size=\"4\" value=\"1\"> "
              "<button class=\"secondary\">Add</button></form></td></tr>";
    }
    body += "</tbody></table>" + pager(*favs, base + "?");
  }

  const int32_t comm = c.int_param("comm");
  const std::string keyword = c.param("q");
  body += "<h2>Catalog</h2><form method=\"get\" action=\"" + base + "\" class=\"card\">"
          "<input type=\"hidden\" name=\"comm\" value=\"" + std::to_string(comm) + "\">"
          "<label for=\"q\">Search</label><input id=\"q\" name=\"q\" value=\"" + esc(keyword) +
          "\" size=\"30\"> <button>Search</button></form>";
  body += commodity_tree(c, base, comm);
  body += search_results(c, id, comm, keyword);
  c.render(id > 0 ? "Add items" : "New requisition", body, "", error, status);
}

// After an add: the requisition the item went into, or the form again with the message.
void added(Ctx& c, bool ok, kxui::UIReq& req, const Variant& req_id) {
  req.ReleaseLock(c.session());
  if (ok) return c.redirect("/req/" + text_of(req_id), "Item added.");
  add_page(c, failure_text(req), 422);
}

}  // namespace

void Portal::mount_items(httplib::Server& s) {
  get(s, R"(/req/(\d+)/add)", [](Ctx& c) { add_page(c); });
  post(s, R"(/req/(\d+)/add/fast)", [](Ctx& c) {
    auto req = c.hub().Req();
    Variant req_id(c.path_int(1)), line, form;
    const bool ok = req->AddItemFastAdd(c.session(), req_id, c.int_param("supplier"),
                                        c.param("part"), "", c.param("qty"), "", line, form);
    added(c, ok, *req, req_id);
  });
  post(s, R"(/req/(\d+)/add/favorite)", [](Ctx& c) {
    auto req = c.hub().Req();
    Variant req_id(c.path_int(1)), line, form;
    const bool ok = req->AddItemFavorite(c.session(), req_id, c.int_param("part"), c.param("qty"),
                                         line, form);
    added(c, ok, *req, req_id);
  });
  post(s, R"(/req/(\d+)/add/special)", [](Ctx& c) {
    auto req = c.hub().Req();
    Variant req_id(c.path_int(1)), line, form;
    const bool ok = req->AddItemSpecialRequest(
        c.session(), req_id, 0, c.param("supplier_name"), "", "", c.param("qty"), c.param("uom"),
        0, "", 0, "", Variant(c.param("price")), c.param("currency"), c.param("description"),
        line, form);
    added(c, ok, *req, req_id);
  });
}

}  // namespace portal
