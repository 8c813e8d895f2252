// The key tree: shapes after known insertion orders, the AVL invariant and
// every search after many random insertions, out-of-memory and misuse.
#include "Common/OS/bintree.h"
#include "Common/OS/osAlloc.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace {

// The tree in pre-order as "key(balance)" words, to compare shapes.
std::string shape(const Leaf *leaf) {
    return leaf == nullptr ? "-"
                           : std::to_string(leaf->key) + "(" + std::to_string(leaf->balance) +
                                 ") " + shape(leaf->left) + " " + shape(leaf->right);
}

// Checks order, balance words and the AVL bound below `leaf`; returns its
// height and counts its leaves.
int checkedHeight(const Leaf *leaf, TreeKey low, TreeKey high, size_t *count) {
    if (leaf == nullptr)
        return 0;
    ++*count;
    EXPECT_TRUE(leaf->key >= low && leaf->key <= high) << leaf->key;
    const int left  = checkedHeight(leaf->left, low, leaf->key - 1, count);
    const int right = checkedHeight(leaf->right, leaf->key + 1, high, count);
    EXPECT_EQ(leaf->balance, left - right) << "at key " << leaf->key;
    EXPECT_LE(std::abs(left - right), 1) << "at key " << leaf->key;
    return 1 + std::max(left, right);
}

// Known orders give their shapes; many random keys keep the AVL invariant
// and are all found.
TEST(OsTree, InsertionsGiveTheirShapesKeepTheBalanceAndFindEveryKey) {
    struct {
        std::vector<TreeKey> keys;
        const char *shape;
    } const cases[] = {
        // clang-format off
        {{1, 2, 3},             "2(0) 1(0) - - 3(0) - -"},
        {{3, 2, 1},             "2(0) 1(0) - - 3(0) - -"},
        {{10, 20, 15},          "15(0) 10(0) - - 20(0) - -"},   // right-left
        {{20, 10, 15},          "15(0) 10(0) - - 20(0) - -"},   // left-right
        {{5, 2, 6, 1, 4, 3},    "4(0) 2(0) 1(0) - - 3(0) - - 5(-1) - 6(0) - -"},
        {{5, 2, 6, 1, 3, 4},    "3(0) 2(1) 1(0) - - - 5(0) 4(0) - - 6(0) - -"},
        {{0x80000000u, 1, 0},   "1(0) 0(0) - - 2147483648(0) - -"}, // unsigned; 0 is a key
        // clang-format on
    };
    Tree tree{nullptr};
    for (const auto &c : cases) {
        for (TreeKey key : c.keys)
            ASSERT_EQ(InsertItem(&tree, key, key), 0);
        ASSERT_EQ(shape(tree.root), c.shape); // a broken shape would break the rest
        DestroyTree(&tree);
    }
    std::mt19937_64 random(20261123);
    std::set<TreeKey> keys;
    while (keys.size() < 3000) {
        // Half of the keys near each other, half anywhere, the top bit too.
        const TreeKey key = keys.size() % 2 ? random() : random() % 4096;
        if (keys.insert(key).second) {
            ASSERT_EQ(InsertItem(&tree, key, ~key), 0);
        }
    }
    size_t count = 0;
    checkedHeight(tree.root, 0, ~TreeKey{0}, &count);
    EXPECT_EQ(count, keys.size());
    for (TreeKey key : keys)
        ASSERT_EQ(SearchTree(&tree, key), ~key);
    EXPECT_EQ(SearchTree(&tree, 4096), 0u);
    DestroyTree(&tree);
}

TEST(OsTree, LoadReplacesTheKeysAndNoValueIsFreed) {
    static int values[2]; // not from the heap: a free of one aborts
    const TreePair pairs[] = {{7, reinterpret_cast<TreeValue>(&values[0])},
                              {3, reinterpret_cast<TreeValue>(&values[1])}};
    Tree *tree             = CreateTree();
    ASSERT_EQ(InsertItem(tree, 1, 1), 0);
    ASSERT_EQ(LoadTree(tree, pairs, 2), 0);
    OsAllocatorSet([](std::size_t) -> void * { return nullptr; });
    EXPECT_EQ(CreateTree(), nullptr);
    EXPECT_EQ(InsertItem(tree, 4, 4), TREE_NO_MEMORY); // the tree stays as it was
    OsAllocatorSet(nullptr);
    EXPECT_EQ(shape(tree->root), "7(1) 3(0) - - -");
    ASSERT_EQ(LoadTree(tree, pairs, 0), 0);
    EXPECT_EQ(tree->root, nullptr);
    EXPECT_EQ(InsertItem(nullptr, 4, 4), TREE_NO_MEMORY); // no tree: no memory for one
    std::free(tree);
}

TEST(OsTreeDeathTest, MisuseEndsTheProcessNamingTheCondition) {
    Tree tree{nullptr};
    InsertItem(&tree, 5, 5);
    EXPECT_DEATH(DestroyTree(nullptr), "bintree.*DestroyTree: Assertion `pTree'");
    EXPECT_DEATH(SearchTree(nullptr, 1), "bintree.*SearchTree: Assertion `pTree'");
    EXPECT_DEATH(InsertItem(&tree, 5, 6), "bintree.*AddLeaf: Assertion `pLeaf->key != key'");
    DestroyTree(&tree);
}

} // namespace
