#include "layer_objects.h"

#include <sys/stat.h>

#include <cstdlib>
#include <ctime>

#include <qbhost/strings.h>

#include "../status_text.h"
#include "archive_terminal_text.h"
#include "input.h"

namespace qbfs::archive {
namespace {

// The layer gives each block it makes its dates in local time
// (FS_CreateGenDBLK). With TZ unset the C library examines /etc/localtime
// again at every conversion, one stat per object restored; naming that
// same file in TZ has it read once for the run. A TZ already set is kept.
void pin_time_zone() {
  setenv("TZ", ":/etc/localtime", 0);
  tzset();
}

GENERIC_DLE* find_root(_Q_HEADER const& list, std::wstring const& path) {
  for (_Q_ELEM* e = list.q_head; e != nullptr; e = e->q_next) {
    auto* dle = reinterpret_cast<GENERIC_DLE*>(e);
    if (dle->device_name != nullptr && path == dle->device_name) return dle;
    if (GENERIC_DLE* below = find_root(dle->child_q, path)) return below;
  }
  return nullptr;
}

enum class NameKind { device, other };

GENERIC_DLE* find_named(_Q_HEADER const& list, std::wstring const& name, NameKind kind) {
  for (_Q_ELEM* e = list.q_head; e != nullptr; e = e->q_next) {
    auto* dle = reinterpret_cast<GENERIC_DLE*>(e);
    bool const match = kind == NameKind::device
                           ? dle->device_name != nullptr && name == dle->device_name
                           : (dle->simple_name != nullptr && name == dle->simple_name) ||
                                 (dle->alt_name != nullptr && name == dle->alt_name);
    if (match) return dle;
    if (GENERIC_DLE* below = find_named(dle->child_q, name, kind)) return below;
  }
  return nullptr;
}

}  // namespace

std::wstring element_base_name(GENERIC_DLE const* element) {
  if (element == nullptr) return {};
  if (element->simple_name != nullptr && element->simple_name[0] != L'\0') return element->simple_name;
  if (element->device_name == nullptr) return {};
  std::wstring device = element->device_name;
  while (!device.empty() && device.back() == L'/') device.pop_back();
  std::size_t const slash = device.find_last_of(L'/');
  return slash == std::wstring::npos ? device : device.substr(slash + 1);
}

std::string narrow(std::wstring const& text) { return wcstring(text).to_utf8(); }
std::wstring widen(std::string const& text) { return wcstring::from_utf8(text.data(), text.size()); }

RootSession::RootSession(Options const& options, std::vector<std::string> const& roots)
    : options_(options) {
  pin_time_zone();
  options_.roots.clear();
  for (std::string const& r : roots) {
    roots_.push_back(widen(r));
    options_.roots.push_back(roots_.back());
  }
  layer_ = std::make_unique<LayerSession>(options_);
  if (!layer_->usable()) {
    error_ = "the layer did not start: " + describe_status(layer_->status());
    return;
  }
  FS_STATUS const status = FS_InitDleList(&head_, layer_->cfg());
  if (status != FS_SUCCESS || head_ == nullptr)
    error_ = "the tree of backup elements could not be built: " + describe_status(status);
}

RootSession::~RootSession() {
  if (head_ != nullptr) FS_DeinitDleList(head_);
}

GENERIC_DLE* RootSession::dle(std::size_t i) const {
  return head_ == nullptr || i >= roots_.size() ? nullptr : find_root(head_->dle_q, roots_[i]);
}

GENERIC_DLE* RootSession::find_element(std::wstring const& name) const {
  if (head_ == nullptr || name.empty()) return nullptr;
  // A device name is unique in the tree; simple and alternate names are
  // only tried when no device name matches, so they never shadow one.
  if (GENERIC_DLE* dle = find_named(head_->dle_q, name, NameKind::device)) return dle;
  return find_named(head_->dle_q, name, NameKind::other);
}

GENERIC_DLE* RootSession::element_of(Place const& place) const {
  return place.directory ? dle(place.root) : find_element(widen(place.text));
}

FSYS_HAND_STRUCT* RootSession::attach_place(Place const& place, std::string& why) {
  if (!error_.empty()) {
    why = error_;
    return nullptr;
  }
  GENERIC_DLE* element = element_of(place);
  if (element == nullptr && !place.directory) {
    why = "it is neither a directory nor an element `qbfs tree` lists";
    return nullptr;
  }
  return attach_element(element, why);
}

int place_of(char const* command, std::string const& text, std::vector<std::string>& roots, Place& out) {
  out = Place{};
  out.text = text;
  struct stat st {};
  if (stat(text.c_str(), &st) != 0 || !S_ISDIR(st.st_mode)) return 0;
  if (int const rc = resolve_directory(command, text, out.resolved)) return rc;
  out.directory = true;
  out.root = roots.size();
  roots.push_back(out.resolved);
  return 0;
}

FSYS_HAND_STRUCT* RootSession::attach(std::size_t i, std::string& why) { return attach_element(dle(i), why); }

FSYS_HAND_STRUCT* RootSession::attach_element(GENERIC_DLE* element, std::string& why) {
  if (element == nullptr) {
    why = options_.modules.empty() ? "no module is loaded"
                                   : "no module offers it as a backup element";
    return nullptr;
  }
  FSYS_HAND_STRUCT* hand = nullptr;
  FS_STATUS const status = FS_AttachToDLE(&hand, element, layer_->cfg(), nullptr, nullptr, 0, 0,
                                          nullptr, nullptr, 0, nullptr, false);
  if (status != FS_SUCCESS) {
    why = "could not attach: " + failure_text(hand, status);
    if (hand != nullptr) FS_DetachDLE(hand);
    return nullptr;
  }
  return hand;
}

std::wstring object_name(FSYS_HAND_STRUCT* hand, DBLK* blk) {
  std::int32_t const size = FS_HandSizeofOSName(hand, blk, false);
  if (size <= 0) return {};
  std::vector<wchar_t> name(size / sizeof(wchar_t) + 1, L'\0');
  if (FS_HandGetOSName(hand, blk, name.data(), false) != FS_SUCCESS) return {};
  return std::wstring(name.data());
}

std::string failure_text(FSYS_HAND_STRUCT* hand, FS_STATUS status) {
  wchar_t* message = nullptr;
  if (hand != nullptr && status == FS_STATUS_EXT_ERROR)
    GEN_GetExtendedErrorInfo(hand, nullptr, nullptr, &message);
  if (message != nullptr && message[0] != L'\0') return terminal_text(std::wstring_view(message));
  return describe_status(status);
}

ObjectGeneric generic_description(FSYS_HAND_STRUCT* hand, DBLK* blk) {
  constexpr int kRead = 0;
  ObjectGeneric generic{};
  FS_STATUS const size = FS_HandGetDisplaySizeDBLK(hand, blk);
  // The refusals of an empty slot or a bad block describe nothing.
  bool const refused = size == FS_ERR_UNIMPLEMENTED || size == FS_ERR_BAD_PARAMETER || size == FS_ERR_NOT_SUPPORTED;
  generic.display_size = refused ? 0 : size;
  _DATE_TIME* const dates[] = {&generic.cdate, &generic.mdate, &generic.adate, &generic.bdate};
  FS_STATUS const status[] = {FS_HandGetCDateDBLK(hand, blk, dates[0]),
                              FS_HandGetMDateDBLK(hand, blk, dates[1]),
                              FS_HandModADateDBLK(hand, kRead, blk, dates[2]),
                              FS_HandModBDateDBLK(hand, kRead, blk, dates[3])};
  for (std::size_t i = 0; i < 4; ++i)
    if (status[i] != FS_SUCCESS) *dates[i] = _DATE_TIME{};
  return generic;
}

FS_STATUS make_block(FSYS_HAND_STRUCT* hand, ObjectRecord const& record, ObjectGeneric const* generic,
                     std::wstring const& name, std::vector<unsigned char>& os_info, DBLK* out) {
  // The request counts the name's bytes in 16 bits: a longer name (only a
  // hostile archive has one) would reach the module cut short.
  if ((name.size() + 1) * sizeof(wchar_t) > 0xFFFFu) return FS_ERR_NAME_TOO_LONG;
  _CREATE_DBLK request;
  FS_SetDefaultDBLK(hand, static_cast<char>(record.blk_type), 0, &request);
  request.dblk = request.gen.dblk = out;
  request.gen.name = name.c_str();
  request.gen.name_size = static_cast<std::uint16_t>((name.size() + 1) * sizeof(wchar_t));
  request.gen.os_id = record.os_id;
  request.gen.os_ver = record.os_ver;
  request.gen.os_info = os_info.empty() ? nullptr : os_info.data();
  request.gen.os_info_size = static_cast<std::uint16_t>(os_info.size());
  request.gen.media_attrib = record.attrib1;
  request.gen.attrib2 = record.attrib2;
  if (generic != nullptr) {
    request.gen.display_size = generic->display_size;
    request.gen.cdate = &generic->cdate;
    request.gen.mdate = &generic->mdate;
    request.gen.adate = &generic->adate;
    request.gen.bdate = &generic->bdate;
  }
  return FS_CreateGenDBLK(hand, record.blk_type, &request);
}

FS_STATUS make_plain_directory(FSYS_HAND_STRUCT* hand, std::wstring const& name, DBLK* out) {
  ObjectRecord record{};
  record.blk_type = DBLK_KIND_DDB;
  std::vector<unsigned char> none;
  return make_block(hand, record, nullptr, name, none, out);
}

int kind_of(FSYS_HAND_STRUCT* hand, std::wstring const& name) {
  if (!FS_HandCanWalk(hand)) return 0;
  std::wstring pattern = name;  // a name with wildcards finds others too
  DBLK blk{};
  FS_STATUS s = FS_HandFindFirstObj(hand, &blk, &pattern[0], 0);
  for (; s == FS_SUCCESS; s = FS_HandFindNextObj(hand, &blk))
    if (object_name(hand, &blk) == name) break;
  int const kind = s == FS_SUCCESS ? blk.blk_type : 0;
  FS_HandFindObjClose(hand, &blk);
  FS_HandReleaseBlk(hand, &blk);
  return kind;
}

}  // namespace qbfs::archive

namespace qbfs::archive {

HandleCursor::~HandleCursor() {
  for (; !current_.empty(); current_.pop_back()) FS_HandChangeDirUp(hand_);
}

bool HandleCursor::go_to(Components const& dir, std::size_t depth, bool create, std::string& why,
                         std::function<void(Components const&, std::size_t)> const& created,
                         std::size_t* failed_depth) {
  std::size_t common = 0;
  while (common < current_.size() && common < depth && current_[common] == dir[common]) ++common;
  for (; current_.size() > common; current_.pop_back()) FS_HandChangeDirUp(hand_);
  bool made_above = false;  // the directory above was made here: it is empty
  for (std::size_t k = common; k < depth; ++k) {
    if (failed_depth != nullptr) *failed_depth = k + 1;
    DBLK block{};
    FS_STATUS status = make_plain_directory(hand_, dir[k], &block);
    if (status != FS_SUCCESS) {
      why = "its directory cannot be described: " + failure_text(hand_, status);
      return false;
    }
    status = made_above ? FS_STATUS_NONE : FS_HandChangeIntoDDB(hand_, &block);
    // Something that cannot be entered may be an object of another kind:
    // a file restored a moment ago, or one the target holds. A directory
    // made over it would replace it, so the path fails instead.
    int const in_the_way = status != FS_SUCCESS && create && !made_above ? kind_of(hand_, dir[k]) : 0;
    if (in_the_way != 0 && in_the_way != DBLK_KIND_DDB) {
      FS_HandReleaseBlk(hand_, &block);
      why = "its directory cannot be made: an object that is no directory has its name";
      return false;
    }
    if (status != FS_SUCCESS && create) {
      status = FS_HandCreateObj(hand_, &block, nullptr, RESTORE_OVERWRITE);
      if (status == FS_SUCCESS) status = FS_HandChangeIntoDDB(hand_, &block);
      made_above = status == FS_SUCCESS;
      if (made_above && created) created(dir, k + 1);
    }
    FS_HandReleaseBlk(hand_, &block);
    if (status != FS_SUCCESS) {
      why = "its directory cannot be entered: " + failure_text(hand_, status);
      return false;
    }
    current_.push_back(dir[k]);
  }
  return true;
}

}  // namespace qbfs::archive
