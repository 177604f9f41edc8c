#include "evaluate_query.h"

#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <stdexcept>
#include <fs_property_tree_error.h>

namespace property_tree_details {

namespace {
enum class state { start, name, dot, position, after_bracket, await_bracket, after_name };

char const* const letters_message =
    "property name can only have alphabetic letters, numbers, and underscores";

[[noreturn]] void fail(char const* message) { throw invalid_property_name(message); }

unsigned long to_position(std::string const& digits) {
  errno = 0;
  char* end = nullptr;
  unsigned long v = std::strtoul(digits.c_str(), &end, 10);
  if (errno == ERANGE) fail("position out of range");
  return v;
}
}  // namespace

void evaluate_query(char const* path, std::vector<std::pair<cstring, unsigned long>>& steps) {
  if (path == nullptr) throw std::invalid_argument("null path");
  state s = state::start;
  cstring name;
  std::string digits;
  auto emit = [&](unsigned long position) {
    steps.emplace_back(name, position);
    name.clear();
    digits.clear();
  };
  for (char const* p = path; *p != '\0'; ++p) {
    unsigned char c = static_cast<unsigned char>(*p);
    bool blank = std::isspace(c) != 0;
    switch (s) {
      case state::start:
        if (blank || c == '/') break;
        if (std::isdigit(c)) fail("property name can not have a number as its first character");
        if (std::isalpha(c) || c == '_') {
          name += static_cast<char>(c);
          s = state::name;
        } else if (c == '[') {
          s = state::position;
        } else if (c == '.') {
          name = ".";
          s = state::dot;
        } else {
          fail(letters_message);
        }
        break;
      case state::name:
        if (std::isalnum(c) || c == '_') {
          name += static_cast<char>(c);
        } else if (c == '[') {
          s = state::position;
        } else if (c == '/') {
          emit(0);
          s = state::start;
        } else if (blank) {
          s = state::after_name;
        } else {
          fail(letters_message);
        }
        break;
      case state::dot:
        if (c == '.') {
          name = "..";
          s = state::after_name;
        } else if (c == '[') {
          s = state::position;
        } else if (c == '/') {
          emit(0);
          s = state::start;
        } else if (blank) {
          s = state::after_name;
        } else {
          fail("property name can only have alphabetic letters, numbers, and underscores or "
               "'.' for self or '..' for parent");
        }
        break;
      case state::position:
        if (std::isdigit(c)) {
          digits += static_cast<char>(c);
        } else if (c == ']') {
          if (digits.empty()) fail("empty position");
          emit(to_position(digits));
          s = state::after_bracket;
        } else if (blank) {
          if (!digits.empty()) {
            emit(to_position(digits));
            s = state::await_bracket;
          }
        } else {
          fail("invalid character found while parsing position");
        }
        break;
      case state::after_bracket:
        if (blank) break;
        if (c == '/') s = state::start;
        else fail(letters_message);
        break;
      case state::await_bracket:
        if (blank) break;
        if (c == ']') s = state::start;
        else fail("invalid character found while parsing position");
        break;
      case state::after_name:
        if (blank) break;
        if (c == '/') {
          emit(0);
          s = state::start;
        } else if (c == '[') {
          s = state::position;
        } else {
          fail(letters_message);
        }
        break;
    }
  }
  if (s == state::position) fail("close bracket not found in parse string");
  if (!name.empty()) emit(0);
}

}  // namespace property_tree_details
