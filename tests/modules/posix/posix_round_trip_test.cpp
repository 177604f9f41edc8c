// Round trip through the layer with the real module: a generated tree is
// walked and read through one handle and restored through another, with
// reads and writes in seeded random piece sizes, then both trees are
// compared by an independent look at the kernel's view (fs_tree.h).
#include <stdlib.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <string>

#include <gtest/gtest.h>

#include "capture.h"
#include "fs_tree.h"
#include "posix_layer.h"

namespace {

std::string temp_dir() {
  char templ[] = "/tmp/qbposix-rt-XXXXXX";
  return mkdtemp(templ) ? templ : "";
}

void remove_tree(std::string const& path) {
  std::string const command = "chmod -R u+rwx '" + path + "' 2>/dev/null; rm -rf '" + path + "'";
  if (std::system(command.c_str()) != 0) std::fprintf(stderr, "could not remove %s\n", path.c_str());
}

class PosixRoundTrip : public ::testing::TestWithParam<std::uint32_t> {};

TEST_P(PosixRoundTrip, RestoredTreeMatchesTheSourceInEveryRespect) {
  // QB_TEST_SEED moves every instance to other seeds; failures print the seed.
  char const* env = std::getenv("QB_TEST_SEED");
  std::uint32_t const seed = GetParam() + (env ? static_cast<std::uint32_t>(std::strtoul(env, nullptr, 10)) : 0u);
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::string const src = temp_dir(), dst = temp_dir();
  ASSERT_FALSE(src.empty() || dst.empty());
  {
    int root = open(src.c_str(), O_RDONLY | O_DIRECTORY);
    ASSERT_TRUE(qbtest::TreeMaker(root, seed).make(true)) << "the generator failed: " << std::strerror(errno);
    close(root);
  }
  qbtest::TreeSnapshot const before = qbtest::snapshot_tree(src);
  ASSERT_GT(before.size(), 60u);
  std::size_t longest = 0;
  for (auto const& entry : before) longest = std::max(longest, entry.first.size());
  ASSERT_GT(longest, static_cast<std::size_t>(PATH_MAX));
  ASSERT_EQ(static_cast<std::uint64_t>(before.at("sparse-huge").st.st_size), qbtest::kHugeSparseSize);
  qbtest::MessageCapture messages;
  qbtest::WalkTotals totals;
  {
    qbtest::PosixSession session(QB_TEST_MODULE_DIR, {src, dst});
    ASSERT_TRUE(session.ok());
    FSYS_HAND_STRUCT* from = session.attach(src);
    FSYS_HAND_STRUCT* to = session.attach(dst);
    ASSERT_NE(from, nullptr);
    ASSERT_NE(to, nullptr);
    std::mt19937 rng(seed);
    totals = qbtest::copy_tree(from, to, rng);
    FS_DetachDLE(from);
    FS_DetachDLE(to);  // directories get their metadata here
  }
  for (std::wstring const& f : totals.failures) ADD_FAILURE() << f;
  EXPECT_EQ(totals.objects, before.size());
  // Holes are neither read nor stored: the 5 GiB file costs its 16 KiB of data.
  EXPECT_LT(totals.bytes, 16u << 20);
  for (std::wstring const& line : messages.lines())
    EXPECT_EQ(line.find(L"posix:"), std::wstring::npos) << line;
  for (std::string const& d : qbtest::compare_trees(before, qbtest::snapshot_tree(dst)))
    ADD_FAILURE() << d;
  EXPECT_TRUE(qbtest::compare_trees(before, qbtest::snapshot_tree(src)).empty()) << "the walk changed the source";
  remove_tree(src);
  remove_tree(dst);
}

INSTANTIATE_TEST_SUITE_P(Seeds, PosixRoundTrip, ::testing::Values(1u, 20261123u));

}  // namespace
