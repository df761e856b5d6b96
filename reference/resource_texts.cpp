#include "reference/resource_texts.h"

namespace kxui::reference {

namespace {

// One row per string: its number and its text in English, German and French.
struct Row {
  int16_t id;
  const char* en;
  const char* de;
  const char* fr;
};

constexpr Row kRows[] = {
    {1000, "Requisition", "Bestellanforderung", "Demande d'achat"},
    {1001, "Requisitions", "Bestellanforderungen", "Demandes d'achat"},
    {1002, "Submit", "Absenden", "Soumettre"},
    {1003, "Approve", "Genehmigen", "Approuver"},
    {1004, "Reject", "Ablehnen", "Rejeter"},
    {1005, "Cancel", "Abbrechen", "Annuler"},
    {1006, "Save", "Speichern", "Enregistrer"},
    {1007, "Delete", "Löschen", "Supprimer"},
    {1008, "Copy", "Kopieren", "Copier"},
    {1009, "Total", "Gesamtbetrag", "Total"},
    {1010, "Subtotal", "Zwischensumme", "Sous-total"},
    {1011, "Estimated tax", "Geschätzte Steuer", "Taxe estimée"},
    {1012, "Quantity", "Menge", "Quantité"},
    {1013, "Unit price", "Stückpreis", "Prix unitaire"},
    {1014, "Description", "Beschreibung", "Description"},
    {1015, "Supplier", "Lieferant", "Fournisseur"},
    {1016, "Status", "Status", "Statut"},
    {1017, "Justification", "Begründung", "Justification"},
    {1018, "Approver", "Genehmiger", "Approbateur"},
    {1019, "Reviewer", "Prüfer", "Réviseur"},
    {1020, "Comments", "Kommentare", "Commentaires"},
    {1021, "Created on @1", "Erstellt am @1", "Créée le @1"},
    {1022, "Page @1 of @2", "Seite @1 von @2", "Page @1 sur @2"},
    {1023, "Item @1 of @2", "Position @1 von @2", "Article @1 sur @2"},
    {1024, "Not found", "Nicht gefunden", "Introuvable"},
    {1025, "Welcome, @1", "Willkommen, @1", "Bienvenue, @1"},
    {1026, "Requisition @1 was submitted for approval.",
     "Bestellanforderung @1 wurde zur Genehmigung eingereicht.",
     "La demande d'achat @1 a été soumise pour approbation."},
    {1027, "Requisition @1 is waiting for your approval.",
     "Bestellanforderung @1 wartet auf Ihre Genehmigung.",
     "La demande d'achat @1 attend votre approbation."},
    {1028, "Delegate approvals from @1 to @2", "Genehmigungen vom @1 bis @2 delegieren",
     "Déléguer les approbations du @1 au @2"},
    {1029, "Search the catalog", "Katalog durchsuchen", "Rechercher dans le catalogue"},
    {1030, "Line one\\nLine two", "Zeile eins\\nZeile zwei", "Ligne un\\nLigne deux"},
    {11600, "Estimated Unit Price is an invalid amount.",
     "Der geschätzte Stückpreis ist kein gültiger Betrag.",
     "Le prix unitaire estimé n'est pas un montant valide."},
    {11601, "Order Quantity is an invalid number.", "Die Bestellmenge ist keine gültige Zahl.",
     "La quantité commandée n'est pas un nombre valide."},
    {11602, "Order Quantity is an invalid number.", "Die Bestellmenge ist keine gültige Zahl.",
     "La quantité commandée n'est pas un nombre valide."},
    {11603, "Order Quantity is an invalid number.", "Die Bestellmenge ist keine gültige Zahl.",
     "La quantité commandée n'est pas un nombre valide."},
    {11604, "Estimated Unit Price is an invalid amount.",
     "Der geschätzte Stückpreis ist kein gültiger Betrag.",
     "Le prix unitaire estimé n'est pas un montant valide."},
    {11605, "Order Quantity is an invalid number.", "Die Bestellmenge ist keine gültige Zahl.",
     "La quantité commandée n'est pas un nombre valide."},
    {11606, "Unable to convert unit price to local currency.",
     "Der Stückpreis kann nicht in die Landeswährung umgerechnet werden.",
     "Impossible de convertir le prix unitaire dans la devise locale."},
    {11607, "Unable to convert unit price to local currency.",
     "Der Stückpreis kann nicht in die Landeswährung umgerechnet werden.",
     "Impossible de convertir le prix unitaire dans la devise locale."},
    {11608, "Invalid packing slip quantity entered. Packing slip quantity must be numeric.",
     "Ungültige Lieferscheinmenge. Die Lieferscheinmenge muss eine Zahl sein.",
     "Quantité du bordereau non valide. La quantité du bordereau doit être numérique."},
    {11609, "Invalid packing slip quantity entered. Packing slip quantity may not be negative.",
     "Ungültige Lieferscheinmenge. Die Lieferscheinmenge darf nicht negativ sein.",
     "Quantité du bordereau non valide. La quantité du bordereau ne peut pas être négative."},
    {11610,
     "Invalid received quantity entered. The receiving correction may not exceed the received "
     "to date quantity.",
     "Ungültige Eingangsmenge. Die Korrektur darf die bisher eingegangene Menge nicht "
     "übersteigen.",
     "Quantité reçue non valide. La correction ne peut pas dépasser la quantité reçue à ce "
     "jour."},
    {11611, "Comments are required if the received quantity value is negative.",
     "Bei negativer Eingangsmenge ist ein Kommentar erforderlich.",
     "Un commentaire est obligatoire si la quantité reçue est négative."},
    {11612, "Invalid carton count entered. Carton count must be numeric.",
     "Ungültige Kartonanzahl. Die Kartonanzahl muss eine Zahl sein.",
     "Nombre de cartons non valide. Le nombre de cartons doit être numérique."},
    {11613, "Invalid received quantity entered. Received quantity must be numeric.",
     "Ungültige Eingangsmenge. Die Eingangsmenge muss eine Zahl sein.",
     "Quantité reçue non valide. La quantité reçue doit être numérique."},
    {11614, "Unable to perform order status check.",
     "Die Abfrage des Bestellstatus ist nicht möglich.",
     "Impossible de vérifier le statut de la commande."},
};

constexpr size_t kCount = sizeof kRows / sizeof kRows[0];

struct Table {
  ResourceText texts[kCount * 3];
  constexpr Table() : texts{} {
    for (size_t i = 0; i < kCount; ++i) {
      texts[i * 3] = {"en-US", kRows[i].id, kRows[i].en};
      texts[i * 3 + 1] = {"de-DE", kRows[i].id, kRows[i].de};
      texts[i * 3 + 2] = {"fr-FR", kRows[i].id, kRows[i].fr};
    }
  }
};

constexpr Table kTable;

}  // namespace

std::span<const ResourceText> resource_texts() { return kTable.texts; }

}  // namespace kxui::reference
