// Every command has exactly one handler.
#include "app/main_window.h"
#include "commands/command_table.h"
#include "resources/ids.h"

#include <gtest/gtest.h>

#include <set>

TEST(CommandHandlers, EachCommandHasOneAndNoOthersExist) {
    std::set<int> handled;
    for (const CommandHandler& handler : AllCommandHandlers()) {
        EXPECT_TRUE(handled.insert(handler.command).second) << handler.command << " has two";
        EXPECT_NE(FindCommand(handler.command), nullptr) << handler.command << " has no row and cannot come";
    }
    for (const CommandRow& row : CommandTable()) {
        // Without a handler: a button whose menu the toolbar opens itself, and commands that this version does not
        // have.
        const bool none = row.id == IDM_COMPILER_MENU || (row.needs & kNever) != 0;
        EXPECT_EQ(handled.contains(row.id), !none) << row.id;
    }
}
