// The tree the module serves. Every object has a modification date and
// attribute words of its own, so that a test can tell which object's
// metadata went where; one date has a fraction of a second. large.bin is
// bigger than the module's read unit and than the layer's staging buffer,
// and empty.txt has no data at all.
//
// ADAPTERFS_CHANGE ("PATH:FIELD", PATH below the element) serves one object
// slightly changed, so that a comparison with an earlier archive has one
// difference to find (an empty PATH: the element's root). FIELD is one of
//   mdate    its seconds field moved on by one
//   attrib1  attribute word 1 with bit 8 flipped
//   attrib2  attribute word 2 with bit 8 flipped
//   data     a file's last byte flipped (its size stays)
#include <cstdlib>

#include "adapterfs.h"

namespace adapterfs {
namespace {

constexpr std::size_t kLargeFileBytes = 200000;

_DATE_TIME utc(int year, int month, int day, int hour, int minute, int second, std::uint32_t ticks = 0) {
  _DATE_TIME date{};
  date.date_valid = 1;
  date.year = static_cast<std::uint16_t>(year);
  date.month = static_cast<std::uint8_t>(month);
  date.day = static_cast<std::uint8_t>(day);
  date.hour = static_cast<std::uint8_t>(hour);
  date.minute = static_cast<std::uint8_t>(minute);
  date.second = static_cast<std::uint8_t>(second);
  date.ticks = ticks;
  return date;
}

Node file(wchar_t const* name, _DATE_TIME mdate, std::uint32_t attrib1, std::uint32_t attrib2, std::string data) {
  return {name, false, mdate, attrib1, attrib2, std::move(data), {}};
}

Node dir(wchar_t const* name, _DATE_TIME mdate, std::uint32_t attrib1, std::uint32_t attrib2,
         std::vector<Node> children) {
  return {name, true, mdate, attrib1, attrib2, {}, std::move(children)};
}

Node* find(Node& dir, std::string const& path) {
  std::size_t const slash = path.find('/');
  std::string const first = path.substr(0, slash);
  for (Node& child : dir.children) {
    if (adapterfs_narrow(child.name) != first) continue;
    return slash == std::string::npos ? &child : find(child, path.substr(slash + 1));
  }
  return nullptr;
}

void change(Node& root, char const* request) {
  constexpr std::uint32_t kFlipped = 0x100;
  std::string const text = request == nullptr ? "" : request;
  std::size_t const colon = text.rfind(':');
  if (colon == std::string::npos) return;
  Node* node = colon == 0 ? &root : find(root, text.substr(0, colon));
  if (node == nullptr) return;
  std::string const field = text.substr(colon + 1);
  if (field == "mdate") {
    node->mdate.second = static_cast<std::uint8_t>((node->mdate.second + 1) % 60);
  } else if (field == "attrib1") {
    node->attrib1 ^= kFlipped;
  } else if (field == "attrib2") {
    node->attrib2 ^= kFlipped;
  } else if (field == "data" && !node->data.empty()) {
    node->data.back() = static_cast<char>(~node->data.back());
  }
}

Node build() {
  std::string large(kLargeFileBytes, '\0');
  for (std::size_t i = 0; i < large.size(); ++i) large[i] = static_cast<char>((i * 7 + i / 251) & 0xFF);
  return dir(L"", utc(2019, 7, 14, 8, 30, 0), 0x0010, 0x0100,
             {file(L"notes.txt", utc(2020, 1, 2, 3, 4, 5, 1234567), 0x0001, 0x0201,
                   "Served through an adapter.\n"),
              file(L"large.bin", utc(2021, 6, 30, 23, 59, 58), 0x0002, 0x0202, large),
              file(L"empty.txt", utc(2018, 2, 28, 12, 0, 0), 0x0003, 0x0203, ""),
              dir(L"src", utc(2022, 11, 11, 11, 11, 11), 0x0011, 0x0101,
                  {file(L"main.c", utc(2017, 5, 6, 7, 8, 9), 0x0004, 0x0204, "int main(void) { return 0; }\n"),
                   dir(L"deep", utc(2016, 10, 20, 20, 10, 0), 0x0012, 0x0102,
                       {file(L"leaf.txt", utc(2015, 3, 15, 15, 15, 15), 0x0005, 0x0205, "a leaf\n")})}),
              dir(L"void", utc(2014, 12, 31, 23, 0, 0), 0x0013, 0x0103, {})});
}

}  // namespace

Node changed_tree() {
  Node root = build();
  change(root, std::getenv(ADAPTERFS_CHANGE_VARIABLE));
  return root;
}

std::string adapterfs_narrow(std::wstring const& name) {
  std::string out;
  for (wchar_t c : name) out.push_back(static_cast<char>(c));
  return out;
}

Node const& adapterfs_root() {
  static Node const root = changed_tree();
  return root;
}

}  // namespace adapterfs
