// The fifteen value kinds: XML tags and the words used in messages.
#pragma once
#include <cstddef>
#include <fs_property_tree_error.h>

namespace property_tree_details {

struct kind_info {
  char const* xml_tag;      // "type" attribute
  char const* dup_word;     // "duplicate name used in add <w> property call"
  char const* tree_target;  // "can not convert a tree to <w> type"
  char const* tree_source;  // "can not convert <w> to a tree type"
  char const* plain;        // "can not convert <w> to xml doc" (and other refusals)
  char const* guid_source;  // "can not convert <w> to guid"
};

kind_info const& info(fs_property_type kind) noexcept;

// The kind whose XML tag is text[0, size); false when no kind has it.
bool kind_from_tag(char const* text, std::size_t size, fs_property_type* out) noexcept;

bool is_numeric(fs_property_type kind) noexcept;

}  // namespace property_tree_details
