#include "archive_names.h"

#include "archive_terminal_text.h"
#include "archive_utf8.h"

namespace qbfs::archive {
namespace {

bool acceptable_component(std::wstring const& c) {
  return !c.empty() && c != L"." && c != L".." && c.find(L'/') == std::wstring::npos &&
         c.find(L'\0') == std::wstring::npos;
}

}  // namespace

bool encode_path(Components const& components, std::string& out) {
  out.clear();
  std::size_t characters = 0;
  for (std::wstring const& c : components) characters += c.size() + 1;
  out.reserve(characters);  // the size of an ASCII path: one allocation for most
  for (std::wstring const& c : components) {
    if (!acceptable_component(c)) return false;
    if (!out.empty()) out += '/';
    for (wchar_t ch : c)
      if (!put_utf8(static_cast<char32_t>(ch), out)) return false;
  }
  return !components.empty();
}

bool decode_path(std::string const& path, Components& out, std::string& why) {
  out.assign(1, std::wstring());
  if (path.empty()) {
    why = "the path is empty";
    return false;
  }
  if (path.front() == '/') {
    why = "the path is absolute";
    return false;
  }
  // Each component is given room for its bytes, at least its characters,
  // instead of growing a character at a time.
  auto room = [&](std::size_t from) {
    std::size_t const slash = path.find('/', from);
    out.back().reserve((slash == std::string::npos ? path.size() : slash) - from);
  };
  room(0);
  for (std::size_t at = 0; at < path.size();) {
    char32_t cp = 0;
    if (!take_utf8(path, at, cp)) {
      why = "the path is not well-formed UTF-8";
      return false;
    }
    if (cp == U'/') {
      out.emplace_back();
      room(at);
    } else {
      out.back() += static_cast<wchar_t>(cp);
    }
  }
  for (std::wstring const& c : out) {
    if (!acceptable_component(c)) {
      why = c.empty() ? "the path has an empty component"
            : c.find(L'\0') != std::wstring::npos ? "the path holds a NUL character"
                                                  : "the path climbs with \"..\" or \".\"";
      return false;
    }
  }
  return true;
}

std::string display_path(std::string const& path) { return terminal_text(path); }

std::string display_path(Components const& components) {
  std::string out;
  for (std::wstring const& c : components) {
    if (!out.empty()) out += '/';
    out += terminal_text(c);
  }
  return out;
}

}  // namespace qbfs::archive
