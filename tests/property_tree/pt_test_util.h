// Helpers shared by the property tree tests: expecting an exception with a
// message, comparing trees, and generating random trees.
#pragma once
#include <cmath>
#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <type_traits>
#include <vector>
#include <gtest/gtest.h>
#include <fs_property_tree.h>

// Runs `f` and checks that it throws E (exactly the message when given).
template <class E, class F>
::testing::AssertionResult throws_with(F&& f, std::string const& message) {
  try {
    f();
  } catch (std::exception const& e) {
    if constexpr (!std::is_same<E, std::exception>::value) {
      if (dynamic_cast<E const*>(&e) == nullptr)
        return ::testing::AssertionFailure() << "other exception (" << typeid(e).name()
                                             << "): " << e.what();
    }
    if (message.empty() || message == e.what()) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "message \"" << e.what() << "\", expected \""
                                         << message << "\"";
  }
  return ::testing::AssertionFailure() << "nothing thrown, expected \"" << message << "\"";
}

namespace pt_test {

// `levels` elements, each inside the one before.
inline std::string nested(int levels, char const* open = "<a>") {
  std::string s;
  for (int i = 0; i < levels; ++i) s += open;
  for (int i = 0; i < levels; ++i) s += "</a>";
  return s;
}

inline bool same_floating(long double a, long double b) {
  if (std::isnan(a) || std::isnan(b)) return std::isnan(a) && std::isnan(b);
  return a == b && std::signbit(a) == std::signbit(b);
}

// Compares two values of the same kind; a message on difference.
inline std::string value_difference(fs_property_tree_value const& a, fs_property_tree_value const& b);

// Empty when the trees hold the same properties, kinds and values in order.
inline std::string tree_difference(fs_property_tree const& a, fs_property_tree const& b,
                                   std::string const& where = "") {
  if (a.size() != b.size())
    return where + ": " + std::to_string(a.size()) + " against " + std::to_string(b.size()) +
           " properties";
  for (std::size_t i = 0; i < a.size(); ++i) {
    fs_property_tree_property const& p = a.at(i);
    fs_property_tree_property const& q = b.at(i);
    std::string here = where + "/" + p.name();
    if (std::strcmp(p.name(), q.name()) != 0) return here + ": name " + q.name();
    if (p.type() != q.type()) return here + ": kind differs";
    if (p.size() != q.size()) return here + ": value count differs";
    for (std::size_t k = 0; k < p.size(); ++k) {
      std::string d = value_difference(p.at(k), q.at(k));
      if (!d.empty()) return here + "[" + std::to_string(k) + "]: " + d;
    }
  }
  return std::string();
}

inline std::string value_difference(fs_property_tree_value const& a, fs_property_tree_value const& b) {
  switch (a.type()) {
    case fs_property_type::dbl:
    case fs_property_type::flt:
    case fs_property_type::ldbl:  // widening to long double is exact
      return same_floating(a.get_ldbl_val(), b.get_ldbl_val()) ? "" : "number differs";
    case fs_property_type::guid: return *a.get_guid_val() == *b.get_guid_val() ? "" : "guid differs";
    case fs_property_type::bin: return a.get_bin_val() == b.get_bin_val() ? "" : "binary differs";
    case fs_property_type::tree: return tree_difference(a.sub_tree(), b.sub_tree(), "(sub-tree)");
    default:  // text, and integers and bools, whose text form is exact
      return std::wstring(a.get_str_val()) == b.get_str_val() ? "" : "value differs";
  }
}

// Random trees with every kind, nesting, empty properties, odd strings.
class tree_generator {
 public:
  explicit tree_generator(unsigned seed) : rng_(seed) {}

  void fill(fs_property_tree& tree, int depth) {
    int count = pick(0, depth == 0 ? 30 : 8);
    for (int i = 0; i < count; ++i) {
      std::string name = unique_name(tree);
      auto kind = static_cast<fs_property_type>(pick(0, 14));
      if (kind == fs_property_type::tree && depth >= 3) kind = fs_property_type::str;
      add(tree, name.c_str(), kind, depth);
    }
  }

  std::wstring odd_string() {
    static wchar_t const pieces[] = L"aZ09 _-<>&\"'\t\n\x00e9\x4e2d\x1f600\x7f;]]>";
    std::wstring s;
    int n = pick(0, 12);
    for (int i = 0; i < n; ++i) s += pieces[pick(0, static_cast<int>(wcslen(pieces)) - 1)];
    // Text made only of blanks does not survive the XML form (documented).
    bool blank = !s.empty();
    for (wchar_t c : s) blank = blank && (c == L' ' || c == L'\t' || c == L'\n');
    if (blank) s += L'x';
    return s;
  }

 private:
  int pick(int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(rng_); }
  template <class T>
  T any_integer() {
    return static_cast<T>(std::uniform_int_distribution<unsigned long long>()(rng_));
  }
  template <class T>
  T any_floating() {
    switch (pick(0, 7)) {
      case 0: return std::numeric_limits<T>::infinity();
      case 1: return -std::numeric_limits<T>::infinity();
      case 2: return std::numeric_limits<T>::quiet_NaN();
      case 3: return std::numeric_limits<T>::denorm_min();
      case 4: return static_cast<T>(-0.0);
      case 5: return std::numeric_limits<T>::max();
      default: {
        T mantissa = std::uniform_real_distribution<double>(-1, 1)(rng_);
        return std::ldexp(mantissa, pick(-100, 100));
      }
    }
  }

  std::string unique_name(fs_property_tree const& tree) {
    static char const first[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_";
    static char const rest[] = "abcdefghijklmnopqrstuvwxyz0123456789_-";
    for (;;) {
      std::string name(1, first[pick(0, sizeof first - 2)]);
      int n = pick(0, 10);
      for (int i = 0; i < n; ++i) name += rest[pick(0, sizeof rest - 2)];
      if (!tree.has_property(name.c_str())) return name;
    }
  }

  void add(fs_property_tree& tree, char const* name, fs_property_type kind, int depth) {
    fs_property_tree_property* p = nullptr;
    switch (kind) {
      case fs_property_type::str: p = &tree.add_str_property(name); break;
      case fs_property_type::lng: p = &tree.add_lng_property(name); break;
      case fs_property_type::dbl: p = &tree.add_dbl_property(name); break;
      case fs_property_type::ulng: p = &tree.add_ulng_property(name); break;
      case fs_property_type::int32: p = &tree.add_int32_property(name); break;
      case fs_property_type::uint32: p = &tree.add_uint32_property(name); break;
      case fs_property_type::int64: p = &tree.add_int64_property(name); break;
      case fs_property_type::uint64: p = &tree.add_uint64_property(name); break;
      case fs_property_type::ldbl: p = &tree.add_ldbl_property(name); break;
      case fs_property_type::flt: p = &tree.add_flt_property(name); break;
      case fs_property_type::boolean: p = &tree.add_bool_property(name); break;
      case fs_property_type::guid: p = &tree.add_guid_property(name); break;
      case fs_property_type::bin: p = &tree.add_bin_property(name); break;
      case fs_property_type::xml: p = &tree.add_xml_property(name); break;
      case fs_property_type::tree: p = &tree.add_sub_tree_property(name); break;
    }
    int values = pick(0, 3);
    for (int i = 0; i < values; ++i) append(*p, kind, depth);
  }

  void append(fs_property_tree_property& p, fs_property_type kind, int depth) {
    switch (kind) {
      case fs_property_type::str: p.append_new_str_value(odd_string().c_str()); break;
      case fs_property_type::lng: p.append_new_lng_value(any_integer<long>()); break;
      case fs_property_type::dbl: p.append_new_dbl_value(any_floating<double>()); break;
      case fs_property_type::ulng: p.append_new_ulng_value(any_integer<unsigned long>()); break;
      case fs_property_type::int32: p.append_new_int32_value(any_integer<int>()); break;
      case fs_property_type::uint32: p.append_new_uint32_value(any_integer<unsigned>()); break;
      case fs_property_type::int64: p.append_new_int64_value(any_integer<long long>()); break;
      case fs_property_type::uint64:
        p.append_new_uint64_value(any_integer<unsigned long long>());
        break;
      case fs_property_type::ldbl: p.append_new_ldbl_value(any_floating<long double>()); break;
      case fs_property_type::flt: p.append_new_flt_value(any_floating<float>()); break;
      case fs_property_type::boolean: p.append_new_bool_value(pick(0, 1) == 1); break;
      case fs_property_type::guid: {
        _SSGUID g{};
        g.Data1 = any_integer<unsigned>();
        g.Data2 = any_integer<unsigned short>();
        g.Data3 = any_integer<unsigned short>();
        for (auto& b : g.Data4) b = any_integer<unsigned char>();
        p.append_new_guid_value(g);
        break;
      }
      case fs_property_type::bin: {
        std::vector<unsigned char> bytes(pick(0, 10) == 0 ? pick(50000, 200000) : pick(0, 40));
        for (auto& b : bytes) b = any_integer<unsigned char>();
        p.append_new_bin_value(bytes.size(), bytes.data());
        break;
      }
      case fs_property_type::xml: {
        static char const* const fragments[] = {
            "", "<a/>", "<a x=\"1\">t&amp;u</a><b/>", "<deep><er><est>\xc3\xa9</est></er></deep>",
            "plain text &lt;here&gt;"};
        std::string utf8 = fragments[pick(0, 4)];
        std::wstring w;
        for (std::size_t i = 0; i < utf8.size(); ++i) {
          unsigned char c = static_cast<unsigned char>(utf8[i]);
          if (c == 0xC3) w += static_cast<wchar_t>(0xC0 | (utf8[++i] & 0x3F));
          else w += static_cast<wchar_t>(c);
        }
        p.append_new_value().set_str_val(w.c_str());
        break;
      }
      case fs_property_type::tree: fill(p.append_new_sub_tree(), depth + 1); break;
    }
  }

  std::mt19937 rng_;
};

}  // namespace pt_test
