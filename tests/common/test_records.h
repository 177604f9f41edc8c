// Plain records that several test folders build the same way.
#pragma once
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <qbfsys/dle.h>
#include <qbhost/datetime.h>
#include <qbfsys/registry.h>
#include <qbhost/queue.h>

namespace qbtest {

// A set date with the given fields.
inline _DATE_TIME make_date(int year, int month, int day, int hour = 0, int minute = 0,
                            int second = 0, std::uint32_t ticks = 0) {
  _DATE_TIME d{};
  d.date_valid = 1;
  d.year = static_cast<std::uint16_t>(year);
  d.month = static_cast<std::uint8_t>(month);
  d.day = static_cast<std::uint8_t>(day);
  d.hour = static_cast<std::uint8_t>(hour);
  d.minute = static_cast<std::uint8_t>(minute);
  d.second = static_cast<std::uint8_t>(second);
  d.ticks = ticks;
  return d;
}

// A date as text, to compare and print in one step; the weekday is left out.
inline std::string show(_DATE_TIME const& d) {
  char buf[64];
  std::snprintf(buf, sizeof buf, "%s%04u-%02u-%02u %02u:%02u:%02u +%07u", d.date_valid ? "" : "(unset) ",
                d.year, d.month, d.day, d.hour, d.minute, d.second, d.ticks);
  return buf;
}

// A wide text's bytes, terminator included.
inline std::vector<unsigned char> wide_bytes(std::wstring const& text) {
  auto const* p = reinterpret_cast<unsigned char const*>(text.c_str());
  return {p, p + (text.size() + 1) * sizeof(wchar_t)};
}

// The registry's tables, by file-system index.
inline _FUNC_LIST* tables() {
  _FUNC_LIST* t = nullptr;
  get_func_tabs(&t);
  return t;
}

// An empty tree head as FS_InitDleList makes one, without drive finding;
// released with FS_DeinitDleList.
inline HEAD_DLE* new_empty_head() {
  auto* head = static_cast<HEAD_DLE*>(std::calloc(1, sizeof(HEAD_DLE)));
  if (head != nullptr) {
    InitQueue(&head->dle_q);
    InitQueue(&head->pdi_q);
  }
  return head;
}

}  // namespace qbtest
