// What can be done with an item of the project tree. Pure.
#pragma once

#include "project/tree_model.h"

#include <cstdint>

struct TreeItemCommands {
    bool open = false;    // in a tab
    bool place = false;   // its path can be copied, it can be shown in the Explorer
    bool create = false;  // something new in it or beside it
    bool change = false;  // its name, or deleting it
    bool operator==(const TreeItemCommands&) const = default;
};
// What the menu offers; without an item (null), nothing of it.
TreeItemCommands TreeCommandsOf(const TreeNode* node);
// The folder of new files and of a search: the item itself, or the one that it is in. Null: there is none.
const TreeNode* TreeFolderFor(const TreeNode* node);

// What Enter does. A double click does the same but for folders, which the control itself opens.
enum class TreeEnter : std::uint8_t { Nothing, OpenFile, Toggle, ShowMore };
TreeEnter TreeEnterOn(const TreeNode* node);
