#pragma once
// ZIP files written byte by byte, so that tests can make archives no library would: names given
// twice, sizes that lie, wrong CRCs, links, names that climb out of their folder.
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::testing {

inline std::uint32_t Crc32(std::string_view data) {
  std::uint32_t crc = 0xFFFFFFFFu;
  for (unsigned char byte : data) {
    crc ^= byte;
    for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ (0xEDB88320u & (0u - (crc & 1u)));
  }
  return ~crc;
}

struct RawEntry {
  std::string Name;  // bytes as stored
  std::string Data;
  std::optional<std::uint32_t> Crc = std::nullopt;           // else that of Data
  std::optional<std::uint32_t> DeclaredSize = std::nullopt;  // else Data's size
  std::uint16_t Method = 0;
  std::uint16_t Flags = 0;                     // 0x0800: the name is UTF-8
  std::uint32_t ExternalAttributes = 0;
};

inline void Put(std::string& out, std::uint64_t value, int bytes) {
  for (int i = 0; i < bytes; ++i) out += static_cast<char>((value >> (8 * i)) & 0xFF);
}

// Stored entries unless a method is given; made by Unix, dated 1980-01-01.
inline std::string RawZip(const std::vector<RawEntry>& entries) {
  std::string out, central;
  for (const RawEntry& e : entries) {
    const std::uint32_t crc = e.Crc.value_or(Crc32(e.Data));
    const std::uint32_t size = e.DeclaredSize.value_or(static_cast<std::uint32_t>(e.Data.size()));
    const std::size_t offset = out.size();
    auto header = [&](std::string& to, bool isCentral) {
      Put(to, isCentral ? 0x02014b50 : 0x04034b50, 4);
      if (isCentral) Put(to, (3u << 8) | 20u, 2);  // made by: Unix
      Put(to, 20, 2);
      Put(to, e.Flags, 2);
      Put(to, e.Method, 2);
      Put(to, 0, 2);       // time
      Put(to, 0x21, 2);    // 1980-01-01
      Put(to, crc, 4);
      Put(to, e.Data.size(), 4);
      Put(to, size, 4);
      Put(to, e.Name.size(), 2);
      Put(to, 0, 2);
      if (isCentral) {
        Put(to, 0, 2);  // comment
        Put(to, 0, 2);  // disk
        Put(to, 0, 2);  // internal attributes
        Put(to, e.ExternalAttributes, 4);
        Put(to, offset, 4);
      }
      to += e.Name;
    };
    header(out, false);
    out += e.Data;
    header(central, true);
  }
  const std::size_t centralOffset = out.size();
  out += central;
  Put(out, 0x06054b50, 4);
  Put(out, 0, 4);
  Put(out, entries.size(), 2);
  Put(out, entries.size(), 2);
  Put(out, central.size(), 4);
  Put(out, centralOffset, 4);
  Put(out, 0, 2);
  return out;
}

}  // namespace velmora::testing
