// Wide strings in heap blocks of exactly their counted size, so that the
// sanitizer reports any read past a count. Literals may hold embedded NULs
// (paths in component form); W() counts the final terminator, U() does not.
#pragma once
#include <cstddef>
#include <memory>
#include <string>

namespace qbtest {

class ExactWide {
 public:
  explicit ExactWide(std::wstring const& s) : n_(s.size()), p_(new wchar_t[s.size()]) {
    s.copy(p_.get(), n_);
  }
  wchar_t* get() const { return p_.get(); }
  short len() const { return static_cast<short>(n_); }

 private:
  std::size_t n_;
  std::unique_ptr<wchar_t[]> p_;
};

template <std::size_t N>
std::wstring W(wchar_t const (&s)[N]) { return std::wstring(s, N); }
template <std::size_t N>
std::wstring U(wchar_t const (&s)[N]) { return std::wstring(s, N - 1); }

}  // namespace qbtest
