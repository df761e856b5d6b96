// Translations of the library's validation messages. The English texts stay with the
// callers (kxui/frame/messages.h), which pass them as the default.
#include <cstdint>
#include <string>
#include <string_view>

#include "kxui/frame/text.h"
#include "services/kx_error.h"

namespace kxui::services {
namespace {

struct Entry {
  std::string_view language;
  int32_t number;
  std::string_view text;
};

constexpr std::string_view kDePrice = "Der geschätzte Stückpreis ist kein gültiger Betrag.";
constexpr std::string_view kDeQty = "Die Bestellmenge ist keine gültige Zahl.";
constexpr std::string_view kDeConvert =
    "Der Stückpreis kann nicht in die Landeswährung umgerechnet werden.";
constexpr std::string_view kFrPrice = "Le prix unitaire estimé n'est pas un montant valide.";
constexpr std::string_view kFrQty = "La quantité commandée n'est pas un nombre valide.";
constexpr std::string_view kFrConvert =
    "Impossible de convertir le prix unitaire dans la devise locale.";

constexpr Entry kCatalogue[] = {
    {"de", 11600, kDePrice},
    {"de", 11601, kDeQty},
    {"de", 11602, kDeQty},
    {"de", 11603, kDeQty},
    {"de", 11604, kDePrice},
    {"de", 11605, kDeQty},
    {"de", 11606, kDeConvert},
    {"de", 11607, kDeConvert},
    {"de", 11608,
     "Ungültige Lieferscheinmenge eingegeben. Die Lieferscheinmenge muss numerisch sein."},
    {"de", 11609,
     "Ungültige Lieferscheinmenge eingegeben. Die Lieferscheinmenge darf nicht negativ sein."},
    {"de", 11610,
     "Ungültige Empfangsmenge eingegeben. Die Korrektur darf die bisher empfangene Menge "
     "nicht überschreiten."},
    {"de", 11611, "Bei negativer Empfangsmenge ist ein Kommentar erforderlich."},
    {"de", 11612, "Ungültige Kartonanzahl eingegeben. Die Kartonanzahl muss numerisch sein."},
    {"de", 11613,
     "Ungültige Empfangsmenge eingegeben. Die Empfangsmenge muss numerisch sein."},
    {"de", 11614, "Die Prüfung des Bestellstatus konnte nicht durchgeführt werden."},
    {"fr", 11600, kFrPrice},
    {"fr", 11601, kFrQty},
    {"fr", 11602, kFrQty},
    {"fr", 11603, kFrQty},
    {"fr", 11604, kFrPrice},
    {"fr", 11605, kFrQty},
    {"fr", 11606, kFrConvert},
    {"fr", 11607, kFrConvert},
    {"fr", 11608,
     "Quantité du bordereau de livraison non valide. La quantité du bordereau de livraison "
     "doit être numérique."},
    {"fr", 11609,
     "Quantité du bordereau de livraison non valide. La quantité du bordereau de livraison "
     "ne peut pas être négative."},
    {"fr", 11610,
     "Quantité reçue non valide. La correction de réception ne peut pas dépasser la "
     "quantité reçue à ce jour."},
    {"fr", 11611, "Un commentaire est obligatoire si la quantité reçue est négative."},
    {"fr", 11612,
     "Nombre de cartons non valide. Le nombre de cartons doit être numérique."},
    {"fr", 11613, "Quantité reçue non valide. La quantité reçue doit être numérique."},
    {"fr", 11614, "Impossible de vérifier le statut de la commande."},
};

}  // namespace

std::string_view catalogue_text(std::string_view language, int32_t message_number) {
  language = language.substr(0, language.find_first_of("-_"));
  for (const Entry& e : kCatalogue) {
    if (e.number == message_number && text::iequals(e.language, language)) return e.text;
  }
  return {};
}

}  // namespace kxui::services
