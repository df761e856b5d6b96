#include "services/user_guid.h"

#include <array>
#include <cstdint>
#include <random>

namespace kxui::services {

std::string RandomUserGUID::CreateGUID(Variant&) {
  // No user-space generator state: a seeded engine would repeat itself in a forked child.
  thread_local std::random_device entropy;
  std::array<uint8_t, 16> b{};
  for (size_t i = 0; i < b.size(); i += 4) {
    const uint32_t r = entropy();
    for (size_t k = 0; k < 4; ++k) b[i + k] = static_cast<uint8_t>(r >> (8 * k));
  }
  b[6] = static_cast<uint8_t>((b[6] & 0x0F) | 0x40);  // version 4
  b[8] = static_cast<uint8_t>((b[8] & 0x3F) | 0x80);  // RFC 4122 variant
  static constexpr char kHex[] = "0123456789ABCDEF";
  std::string out = "{";
  for (size_t i = 0; i < b.size(); ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) out += '-';
    out += kHex[b[i] >> 4];
    out += kHex[b[i] & 0x0F];
  }
  out += '}';
  return out;
}

}  // namespace kxui::services
