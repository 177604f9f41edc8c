// The debug_pt aid: a context tree and short operations on it, with a log.
#include <debug_pt.h>

#include <sstream>
#include <boost/shared_ptr.hpp>
#include <qbhost/base64.h>
#include <fs_property_tree.h>
#include "conversions.h"

namespace property_tree_details {

namespace {

std::wstring widen(char const* text) {
  std::wstring out;
  for (; *text != '\0'; ++text) out += static_cast<wchar_t>(static_cast<unsigned char>(*text));
  return out;
}

// A value in its XML text form.
std::wstring value_text(fs_property_tree_value& v) {
  switch (v.type()) {
    case fs_property_type::guid: {
      char buf[guid_text_size + 1] = {};
      format_guid(*v.get_guid_val(), buf);
      return widen(buf);
    }
    case fs_property_type::bin: {
      std::vector<unsigned char> bytes = v.get_bin_val();
      return widen(base64_encode(bytes.data(), bytes.size()).c_str());
    }
    case fs_property_type::tree: return v.sub_tree().serialize_txt();
    default: return v.get_str_val();
  }
}

class debug_pt_impl final : public debug_pt {
 public:
  debug_pt& p(fs_property_tree* tree) override {
    context_ = tree;
    return *this;
  }

  debug_pt& mv(char const* path) override {
    if (context_ == nullptr || path == nullptr) return *this;
    try {
      fs_property_tree* next = &context_->query_sub_tree(path);
      context_ = next->is_null_tree() ? nullptr : next;
    } catch (...) {
      context_ = nullptr;
    }
    return *this;
  }

  debug_pt& as(char const* name) override {
    return add(name, [](fs_property_tree& t, char const* n) { t.add_str_property(n); });
  }
  debug_pt& al(char const* name) override {
    return add(name, [](fs_property_tree& t, char const* n) { t.add_lng_property(n); });
  }
  debug_pt& ad(char const* name) override {
    return add(name, [](fs_property_tree& t, char const* n) { t.add_dbl_property(n); });
  }
  debug_pt& axml(char const* name) override {
    return add(name, [](fs_property_tree& t, char const* n) { t.add_xml_property(n); });
  }
  debug_pt& ast(char const* name) override {
    return add(name, [](fs_property_tree& t, char const* n) { t.add_sub_tree_property(n); });
  }

  debug_pt& av(char const* name) override {
    if (context_ == nullptr || name == nullptr) return *this;
    try {
      if (context_->has_property(name)) context_->get_property(name).append_new_value();
    } catch (...) {
      context_ = nullptr;
    }
    return *this;
  }

  debug_pt& cv(char const* name, unsigned long position, wchar_t const* text) override {
    if (name == nullptr || text == nullptr) return *this;
    log(L"cv - called: name=" + widen(name) + L" position=" + std::to_wstring(position) +
        L" text=" + text);
    try {
      if (context_ == nullptr) {
        log(L"cv - Invalid state.");
      } else if (!context_->has_property(name)) {
        log(L"cv - Property not found: " + widen(name));
      } else {
        fs_property_tree_property& property = context_->get_property(name);
        if (position >= property.size()) {
          log(L"cv - Value offset not found: " + std::to_wstring(position));
        } else if (property.type() == fs_property_type::tree) {
          log(L"cv - Subtree not suported.");
        } else {
          log(std::wstring(L"cv - Setting value: ") + text);
          property[position].set_str_val(text);
        }
      }
    } catch (std::exception const& e) {
      log(L"cv - Unexpected error! " + widen(e.what()));
      context_ = nullptr;
    } catch (...) {
      log(L"cv - Unexpected error!");
      context_ = nullptr;
    }
    log(L"cv - exit");
    return *this;
  }

  std::wstring dv(char const* name, unsigned long position) override {
    if (context_ == nullptr) return L"context not set!";
    if (name == nullptr) return L"property not found!";
    try {
      if (!context_->has_property(name)) return L"property not found!";
      fs_property_tree_property& property = context_->get_property(name);
      if (position >= property.size()) return L"value offset not found!";
      return value_text(property[position]);
    } catch (...) {
      context_ = nullptr;
      return L"unexpected error!";
    }
  }

  debug_pt& rp(char const* name) override {
    if (context_ == nullptr || name == nullptr) return *this;
    try {
      auto it = context_->find(name);
      if (it != context_->end()) context_->erase(it);
    } catch (...) {
      context_ = nullptr;
    }
    return *this;
  }

  debug_pt& rv(char const* name, unsigned long position) override {
    if (context_ == nullptr || name == nullptr) return *this;
    try {
      if (context_->has_property(name)) {
        fs_property_tree_property& property = context_->get_property(name);
        if (position < property.size())
          property.erase(property.begin() + static_cast<std::ptrdiff_t>(position));
      }
    } catch (...) {
      context_ = nullptr;
    }
    return *this;
  }

  std::wstring dp() override {
    if (context_ == nullptr) return L"context not set!";
    try {
      return context_->serialize_txt();
    } catch (...) {
      context_ = nullptr;
      return L"unexpected error!";
    }
  }

  debug_pt& begin_log() override {
    try {
      log_.reset(new std::wostringstream());
    } catch (...) {
      log_.reset();
    }
    return *this;
  }

  std::wstring end_log() override {
    std::wstring text;
    try {
      if (log_) text = log_->str();
    } catch (...) {
      text.clear();
    }
    log_.reset();
    return text;
  }

 private:
  template <class Add>
  debug_pt& add(char const* name, Add add_property) {
    if (context_ == nullptr || name == nullptr) return *this;
    try {
      if (!context_->has_property(name)) add_property(*context_, name);
    } catch (...) {
      context_ = nullptr;
    }
    return *this;
  }

  void log(std::wstring const& line) {
    if (log_) *log_ << line << L'\n';
  }

  fs_property_tree* context_ = nullptr;
  boost::shared_ptr<std::wostringstream> log_;
};

}  // namespace
}  // namespace property_tree_details

debug_pt& debug_pt::i() {
  static property_tree_details::debug_pt_impl* const instance =
      new property_tree_details::debug_pt_impl();  // lives until the process ends
  return *instance;
}
