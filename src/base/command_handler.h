// Who carries out a command. Each area has a table of its own; the frame joins them (app/commands_win.cpp). Pure.
#pragma once

#include <span>

// `run` may count on what the table of commands asks for (commands/command_table.h): it is called only then. It gets the
// command's number, for those that serve several. UI thread.
struct CommandHandler {
    int command;
    void (*run)(int command);
};

// False: none of the handlers is for the command.
inline bool RunCommandHandler(std::span<const CommandHandler> handlers, int command) {
    for (const CommandHandler& handler : handlers) {
        if (handler.command != command) continue;
        handler.run(command);
        return true;
    }
    return false;
}
