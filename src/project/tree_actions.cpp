// What can be done with an item of the project tree. Pure.
#include "project/tree_actions.h"

TreeItemCommands TreeCommandsOf(const TreeNode* node) {
    if (node == nullptr) return {};
    const bool entry = node->kind == NodeKind::File || node->kind == NodeKind::Folder;
    return {.open = node->kind == NodeKind::File,
            .place = entry,
            .create = TreeFolderFor(node) != nullptr,
            .change = entry && node->parent != nullptr};
}

const TreeNode* TreeFolderFor(const TreeNode* node) {
    while (node != nullptr && node->kind != NodeKind::Folder) node = node->parent;
    return node;
}

TreeEnter TreeEnterOn(const TreeNode* node) {
    if (node == nullptr) return TreeEnter::Nothing;
    switch (node->kind) {
        case NodeKind::File: return TreeEnter::OpenFile;
        case NodeKind::Folder: return TreeEnter::Toggle;
        case NodeKind::More: return TreeEnter::ShowMore;
        case NodeKind::Note:
        case NodeKind::Draft: break;
    }
    return TreeEnter::Nothing;
}
