// What the adapter classes' bodies, expanded from the rows of
// qbfsys/func_slots.def, have in common.
#pragma once

namespace fsys {

// True when one of the pointers is null: the test of a guarded operation,
// written `any_null (fsh, blk)` with the row's pointer list.
template <typename... Pointee>
constexpr bool any_null(Pointee const*... pointers) {
  return ((pointers == nullptr) || ...);
}

// Marks the row's arguments as used: a body expanded from a row may answer
// without looking at them.
template <typename... Arg>
constexpr void ignore(Arg const&...) {}

}  // namespace fsys

// A row's form selects whether a body is expanded: FSH_ROW_KEEP(text) is the
// text, FSH_ROW_DROP(text) nothing.
#define FSH_ROW_KEEP(...) __VA_ARGS__
#define FSH_ROW_DROP(...)

// The first of a row's arguments, `FSH_ROW_FIRST (fsh, blk)` being fsh: the
// handle (or object) whose table an operation reaches.
#define FSH_ROW_FIRST(...) FSH_ROW_FIRST_I(__VA_ARGS__, unused)
#define FSH_ROW_FIRST_I(first, ...) first
