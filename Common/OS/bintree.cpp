// The key tree: AVL insertion with single and double rotations, search, and
// destruction of all leaves. No removal of one key: the registry rebuilds.
#include "Common/OS/bintree.h"

#include "Common/OS/osAlloc.h"
#include "Common/OS/osAssert.h"

#include <cstdlib>
#include <pthread.h>
#include <type_traits>

static_assert(sizeof(TreeKey) == sizeof(pthread_t) && std::is_unsigned_v<pthread_t>,
              "a key holds a thread handle, compared unsigned");

namespace {

Leaf *NewLeaf(TreeKey key, TreeValue value) {
    auto *leaf = static_cast<Leaf *>(osAlloc(sizeof(Leaf)));
    if (leaf != nullptr)
        *leaf = Leaf{nullptr, nullptr, 0, key, value};
    return leaf;
}

// Single rotations: the heavy child C becomes the top; N and C end even.
void RotateRight(Leaf *&node) {
    Leaf *n = node, *c = n->left;
    n->left    = c->right;
    c->right   = n;
    n->balance = c->balance = 0;
    node                    = c;
}

void RotateLeft(Leaf *&node) {
    Leaf *n = node, *c = n->right;
    n->right   = c->left;
    c->left    = n;
    n->balance = c->balance = 0;
    node                    = c;
}

// Double rotations: P, the inner grandchild, becomes the top and ends even;
// N and C take what P's two subtrees held before.
void RotateLeftRight(Leaf *&node) {
    Leaf *n = node, *c = n->left, *p = c->right;
    c->right   = p->left;
    p->left    = c;
    n->left    = p->right;
    p->right   = n;
    n->balance = p->balance == +1 ? -1 : 0;
    c->balance = p->balance == -1 ? +1 : 0;
    p->balance = 0;
    node       = p;
}

void RotateRightLeft(Leaf *&node) {
    Leaf *n = node, *c = n->right, *p = c->left;
    c->left    = p->right;
    p->right   = c;
    n->right   = p->left;
    p->left    = n;
    n->balance = p->balance == -1 ? +1 : 0;
    c->balance = p->balance == +1 ? -1 : 0;
    p->balance = 0;
    node       = p;
}

void BalanceLeft(Leaf *&node) {
    if (node->left->balance == +1)
        RotateRight(node);
    else
        RotateLeftRight(node);
}

void BalanceRight(Leaf *&node) {
    if (node->right->balance == -1)
        RotateLeft(node);
    else
        RotateRightLeft(node);
}

// Hangs `leaf` (allocated by the caller, so that a failed allocation leaves
// the tree untouched) below `pLeaf` and returns the new top of the subtree.
// `done` set on return: the subtree kept its height; clear: it grew by one.
Leaf *AddLeaf(Leaf *pLeaf, Leaf *leaf, int *done) {
    if (pLeaf == nullptr) {
        *done = 0;
        return leaf;
    }
    const TreeKey key = leaf->key;
    OS_ASSERT(pLeaf->key != key);
    const bool left = pLeaf->key > key;
    if (left)
        pLeaf->left = AddLeaf(pLeaf->left, leaf, done);
    else
        pLeaf->right = AddLeaf(pLeaf->right, leaf, done);
    if (*done)
        return pLeaf;
    const int32_t grown = left ? +1 : -1;
    if (pLeaf->balance == 0) {
        pLeaf->balance = grown; // taller by one; the parent must look
        return pLeaf;
    }
    *done = 1;
    if (pLeaf->balance != grown)
        pLeaf->balance = 0; // the short side caught up
    else if (left)
        BalanceLeft(pLeaf);
    else
        BalanceRight(pLeaf);
    return pLeaf;
}

// The search goes down from the root; written as a loop, which is what the
// tail recursion of a recursive descent compiles to.
const Leaf *FindLeaf(const Leaf *pLeaf, TreeKey key) {
    while (pLeaf != nullptr && pLeaf->key != key)
        pLeaf = pLeaf->key < key ? pLeaf->right : pLeaf->left;
    return pLeaf;
}

void FreeLeaves(Leaf *pLeaf) {
    if (pLeaf == nullptr)
        return;
    FreeLeaves(pLeaf->left);
    FreeLeaves(pLeaf->right);
    std::free(pLeaf);
}

} // namespace

extern "C" Tree *CreateTree(void) {
    auto *tree = static_cast<Tree *>(osAlloc(sizeof(Tree)));
    if (tree != nullptr)
        tree->root = nullptr;
    return tree;
}

extern "C" void DestroyTree(Tree *pTree) {
    OS_ASSERT(pTree);
    FreeLeaves(pTree->root);
    pTree->root = nullptr;
}

// A null tree is where the registry lands when CreateTree found no memory:
// that is no caller's error, so it gets the out-of-memory result, which the
// task start logs, instead of an assertion.
extern "C" int InsertItem(Tree *tree, TreeKey key, TreeValue value) {
    if (tree == nullptr)
        return TREE_NO_MEMORY;
    Leaf *leaf = NewLeaf(key, value);
    if (leaf == nullptr)
        return TREE_NO_MEMORY;
    int done   = 0;
    tree->root = AddLeaf(tree->root, leaf, &done);
    return 0;
}

extern "C" int LoadTree(Tree *tree, const TreePair *pairs, int count) {
    if (tree != nullptr && tree->root != nullptr)
        DestroyTree(tree);
    for (int i = 0; i < count; ++i) {
        if (int result = InsertItem(tree, pairs[i].key, pairs[i].value); result != 0)
            return result;
    }
    return 0;
}

extern "C" TreeValue SearchTree(const Tree *pTree, TreeKey key) {
    OS_ASSERT(pTree);
    const Leaf *leaf = FindLeaf(pTree->root, key);
    return leaf != nullptr ? leaf->value : 0;
}
