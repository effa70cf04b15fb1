// A window that takes the program's numbered commands. The frame routes a command to the active
// pane first and then to itself, and asks the same route whether a command is enabled, for the
// command bar's buttons and the menus.
#pragma once

struct CommandState {
    bool bEnabled = false;
    bool bChecked = false;
};

class ICommandTarget {
public:
    virtual ~ICommandTarget() = default;
    // True if the command was handled here.
    virtual bool OnCommand(int nId) = 0;
    // True if this target knows the command; state then tells whether it can run now.
    virtual bool OnUpdateCommand(int nId, CommandState& state) = 0;
};
