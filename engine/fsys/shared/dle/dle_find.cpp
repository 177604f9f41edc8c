// Finding DLEs by name: DLE_FindByName and both DLE_FindPdiByName forms.
#include <cwchar>

#include <qbfsys/dle.h>
#include <qbhost/strings.h>

namespace {

constexpr std::uint32_t kWeak = DLE_WEAK;

bool is_instance(std::uint32_t t) { return t == DLE_TYPE_INSTANCE || t == DLE_TYPE_INSTANCE_ALT; }

bool names_a_path(std::uint32_t subtype) {
  for (std::uint32_t s : DLE_SUBTYPE_INSTANCE_PATHS)
    if (subtype == s) return true;
  return false;
}

bool equal(wchar_t const* a, wchar_t const* b) { return QB::stricmp_internal(a, b) == 0; }
bool equal_n(wchar_t const* a, wchar_t const* b, std::size_t n) {
  return QB::strnicmp_internal(a, b, n) == 0;
}

// Type 5, subtype 4 (a machine's share root): the device name is a prefix of
// the name, ending at the end of the name or at a backslash.
bool matches_share_root(GENERIC_DLE const* d, wchar_t const* name) {
  std::size_t n = std::wcslen(d->device_name);
  std::size_t bound = d->device_name_size / sizeof(wchar_t);
  if (n > bound) n = bound;
  // A name shorter than n differs at its terminator, so name[n] is in bounds.
  if (!equal_n(name, d->device_name, n)) return false;
  return name[n] == L'\0' || name[n] == L'\\';
}

// Subtypes 12, 9, 6 of types 21/36: same text before the name's first
// backslash, and the same text from the '(' after each first backslash.
bool matches_instance_path(GENERIC_DLE const* d, wchar_t const* name) {
  wchar_t const* dev = d->device_name;
  wchar_t const* nb = std::wcschr(name, L'\\');
  if (nb == nullptr) return false;
  std::size_t before = static_cast<std::size_t>(nb - name);
  if (std::wcslen(dev) < before || !equal_n(name, dev, before)) return false;
  wchar_t const* db = std::wcschr(dev, L'\\');
  if (db == nullptr) return false;
  wchar_t const* np = std::wcschr(nb, L'(');
  wchar_t const* dp = std::wcschr(db, L'(');
  if (np == nullptr || dp == nullptr) return false;
  return equal(np, dp);
}

// Other subtypes of types 21/36: "server(instance)\rest" forms.
bool matches_instance_name(GENERIC_DLE const* d, wchar_t const* name) {
  wchar_t const* dev = d->device_name;
  wchar_t const* paren = std::wcschr(name, L'(');
  if (paren != nullptr) {
    wchar_t const* nb = std::wcschr(name, L'\\');
    bool backslash_before = nb != nullptr && nb < paren;
    std::size_t through = static_cast<std::size_t>(paren - name) + 1;
    if (!backslash_before && std::wcslen(dev) >= through && equal_n(name, dev, through)) {
      wchar_t const* db = std::wcschr(dev, L'\\');
      if (nb == nullptr && db == nullptr) return true;
      if ((nb == nullptr) != (db == nullptr)) return false;
      return equal(nb, db);
    }
  }
  return equal(name, dev);
}

bool matches(GENERIC_DLE const* d, wchar_t const* name, bool anyType, std::uint32_t wanted) {
  if (d->device_name == nullptr) return false;
  std::uint32_t dt = d->type & ~kWeak;
  if (!(is_instance(wanted) && is_instance(dt)) && !anyType && wanted != dt) return false;
  if (!is_instance(d->type)) {
    if (d->type == DLE_TYPE_REMOTE_MACHINE && d->subtype == DLE_SUBTYPE_SHARE_HOST)
      return matches_share_root(d, name);
    return equal(name, d->device_name);
  }
  std::uint32_t st = d->subtype & ~kWeak;
  if (names_a_path(st)) return matches_instance_path(d, name);
  return matches_instance_name(d, name);
}

// Depth first, children before the element itself. A match without the weak
// bit ends the search; a weak match is kept until a later match replaces it.
GENERIC_DLE* search(_Q_HEADER const* list, wchar_t const* name, bool anyType, std::uint32_t wanted,
                    GENERIC_DLE** provisional) {
  for (_Q_ELEM* e = list->q_head; e != nullptr; e = e->q_next) {
    GENERIC_DLE* d = reinterpret_cast<GENERIC_DLE*>(e);
    if (d->child_q.q_count != 0) {
      if (GENERIC_DLE* found = search(&d->child_q, name, anyType, wanted, provisional)) return found;
    }
    if (matches(d, name, anyType, wanted)) {
      if ((d->type & kWeak) == 0) return d;
      *provisional = d;
    }
  }
  return nullptr;
}

}  // namespace

FS_STATUS DLE_FindByName(HEAD_DLE* head, wchar_t const* name, short type, GENERIC_DLE** out,
                         GENERIC_DLE* parent) {
  if (out != nullptr) *out = nullptr;
  if (name == nullptr) {
    GENERIC_DLE* dflt = head != nullptr ? head->default_dle : nullptr;
    if (dflt == nullptr) return FS_ERR_NOT_SUPPORTED;
    if (out != nullptr) *out = dflt;
    return FS_SUCCESS;
  }
  _Q_HEADER const* list = parent != nullptr ? &parent->child_q : (head ? &head->dle_q : nullptr);
  if (list == nullptr) return FS_ERR_NOT_SUPPORTED;
  bool anyType = type == -1;
  std::uint32_t wanted = static_cast<std::uint16_t>(type) & ~kWeak;
  GENERIC_DLE* provisional = nullptr;
  GENERIC_DLE* found = search(list, name, anyType, wanted, &provisional);
  if (found == nullptr) found = provisional;
  if (found == nullptr) return FS_ERR_NOT_SUPPORTED;
  if (out != nullptr) *out = found;
  return FS_SUCCESS;
}

FS_STATUS DLE_FindPdiByName(HEAD_DLE* head, wchar_t const* name, wchar_t const* secondName,
                            short /*ignored*/, GENERIC_DLE** out) {
  if (head == nullptr || name == nullptr) return FS_ERR_NOT_SUPPORTED;
  for (_Q_ELEM* e = head->pdi_q.q_head; e != nullptr; e = e->q_next) {
    GENERIC_DLE* d = reinterpret_cast<GENERIC_DLE*>(e);
    if (d->device_name == nullptr || !equal(d->device_name, name)) continue;
    if (secondName != nullptr &&
        (d->secondary_name == nullptr || !equal(d->secondary_name, secondName)))
      continue;
    if (out != nullptr) *out = d;
    return FS_SUCCESS;
  }
  return FS_ERR_NOT_SUPPORTED;
}

FS_STATUS DLE_FindPdiByName(HEAD_DLE* head, wchar_t const* name, short ignored, GENERIC_DLE** out) {
  return DLE_FindPdiByName(head, name, nullptr, ignored, out);
}
