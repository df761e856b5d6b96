// The time zones users may choose, by the integer identifiers the reference data and the
// session use. Identifier 15 is UTC, the zone in which dates are stored. Reference data
// lists this table to users, so entries are only ever added, never renumbered.
#pragma once

#include <cstdint>
#include <iterator>
#include <span>
#include <string_view>

namespace kxui::services {

struct TimeZoneInfo {
  int32_t id;
  std::string_view iana_name;     // the zone in ICU's time-zone data
  std::string_view display_name;  // English, for lists
};

inline constexpr int32_t kStoredTimeZone = 15;

inline constexpr TimeZoneInfo kTimeZones[] = {
    {1, "Pacific/Honolulu", "Hawaii"},
    {2, "America/Anchorage", "Alaska"},
    {3, "America/Los_Angeles", "Pacific Time (US and Canada)"},
    {4, "America/Phoenix", "Arizona"},
    {5, "America/Denver", "Mountain Time (US and Canada)"},
    {6, "America/Chicago", "Central Time (US and Canada)"},
    {7, "America/Mexico_City", "Mexico City"},
    {8, "America/New_York", "Eastern Time (US and Canada)"},
    {9, "America/Bogota", "Bogota, Lima"},
    {10, "America/Halifax", "Atlantic Time (Canada)"},
    {11, "America/St_Johns", "Newfoundland"},
    {12, "America/Sao_Paulo", "Brasilia"},
    {13, "America/Argentina/Buenos_Aires", "Buenos Aires"},
    {14, "Atlantic/Azores", "Azores"},
    {15, "Etc/UTC", "Coordinated Universal Time"},
    {16, "Europe/London", "London, Dublin, Lisbon"},
    {17, "Europe/Berlin", "Berlin, Vienna, Zurich"},
    {18, "Europe/Paris", "Paris, Brussels"},
    {19, "Europe/Rome", "Rome"},
    {20, "Europe/Madrid", "Madrid"},
    {21, "Europe/Amsterdam", "Amsterdam"},
    {22, "Europe/Athens", "Athens, Helsinki"},
    {23, "Africa/Johannesburg", "Johannesburg"},
    {24, "Europe/Moscow", "Moscow"},
    {25, "Asia/Dubai", "Dubai"},
    {26, "Asia/Kolkata", "India"},
    {27, "Asia/Shanghai", "Beijing, Shanghai"},
    {28, "Asia/Singapore", "Singapore"},
    {29, "Asia/Tokyo", "Tokyo"},
    {30, "Australia/Sydney", "Sydney, Melbourne"},
    {31, "Pacific/Auckland", "Auckland"},
};

// The entry of an identifier, or nullptr when there is none.
constexpr const TimeZoneInfo* find_time_zone(int32_t id) {
  // The table is in identifier order from 1, so an identifier is usually its place.
  if (id >= 1 && id <= static_cast<int32_t>(std::size(kTimeZones)) && kTimeZones[id - 1].id == id) {
    return &kTimeZones[id - 1];
  }
  for (const TimeZoneInfo& z : kTimeZones) {
    if (z.id == id) return &z;
  }
  return nullptr;
}

}  // namespace kxui::services
