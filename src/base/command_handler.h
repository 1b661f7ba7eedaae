// Who carries out a command. Each area has a table of its own; the frame joins them (app/commands_win.cpp). Pure.
#pragma once

// `run` may count on what the table of commands asks for (commands/command_table.h): it is called only then. It gets the
// command's number, for those that serve several. UI thread.
struct CommandHandler {
    int command;
    void (*run)(int command);
};
