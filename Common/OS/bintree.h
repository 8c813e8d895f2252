/* Public interface of the key tree (C-compatible): a height-balanced (AVL)
 * binary search tree from an unsigned key, as wide as a thread handle, to a
 * pointer-sized value. The task registry finds a task's record by its thread
 * with it. The tree has no lock: its user serialises every call.
 *
 * Return convention of this header: InsertItem and LoadTree return 0, or
 * TREE_NO_MEMORY when a key could not be stored; SearchTree returns the value
 * it finds, 0 when the key is not there; CreateTree returns the tree or null.
 * A null tree given to DestroyTree or SearchTree, and a key inserted twice,
 * are fatal assertions. Every operation may be called from any thread. */
#ifndef COMMON_OS_BINTREE_H
#define COMMON_OS_BINTREE_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* A key: a thread handle (32 bits on the appliance, 64 on a 64-bit host),
 * compared unsigned. A value: the user's pointer-sized word, never read or
 * freed by the tree. */
typedef uintptr_t TreeKey;
typedef uintptr_t TreeValue;

/* One node. `balance` is the height of `left` minus the height of `right`:
 * +1, 0 or -1 between operations. */
typedef struct Leaf {
    struct Leaf *left;  /* smaller keys */
    struct Leaf *right; /* larger keys */
    int32_t balance;
    TreeKey key;
    TreeValue value;
} Leaf;

/* The header the user keeps; `root` is null for an empty tree. */
typedef struct Tree {
    Leaf *root;
} Tree;

/* One entry for LoadTree. */
typedef struct TreePair {
    TreeKey key;
    TreeValue value;
} TreePair;

/* InsertItem and LoadTree: no leaf could be had (or there is no tree); the
 * tree is as it was before the key. */
#define TREE_NO_MEMORY 1

/* A new empty tree on the heap, or null when the heap gives nothing. */
Tree *CreateTree(void);
/* Frees every leaf; the header stays usable, empty. */
void DestroyTree(Tree *pTree);
/* Adds `key` with `value` and rebalances. A null tree (one that could not be
 * created) stores nothing and answers TREE_NO_MEMORY, like a leaf that can't
 * be allocated. */
int InsertItem(Tree *tree, TreeKey key, TreeValue value);
/* Empties the tree, then inserts the `count` pairs in array order. Stops at
 * the first pair that can't be stored and returns its result. */
int LoadTree(Tree *tree, const TreePair *pairs, int count);
/* The value stored under `key`, or 0; a stored 0 reads the same as none. */
TreeValue SearchTree(const Tree *pTree, TreeKey key);

#ifdef __cplusplus
}
#endif

#endif
