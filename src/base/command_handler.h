// The functions that carry out commands. Each area has a table of its own, and the frame tries the tables in turn
// (app/commands_win.cpp). Pure.
#pragma once

#include <span>

// `run` is called only while the conditions of its command in the table of commands hold (commands/command_table.h).
// Its argument is the number of the command, because one function may serve several. UI thread.
struct CommandHandler {
    int command;
    void (*run)(int command);
};

// Runs the handler of the command. Returns false when none of the handlers is for it.
inline bool RunCommandHandler(std::span<const CommandHandler> handlers, int command) {
    for (const CommandHandler& handler : handlers) {
        if (handler.command != command) continue;
        handler.run(command);
        return true;
    }
    return false;
}
