// Panes that record the commands the frame's route gives them.
#pragma once

#include "ICommandTarget.h"
#include "ToolkitTestSupport.h"

#include <QWidget>
#include <map>
#include <vector>

namespace apptest {

using toolkittest::BoxCatcher;

class RecordingPane : public QWidget, public ICommandTarget {
public:
    // The commands this pane knows, with whether each is enabled.
    std::map<int, bool> m_known;
    std::vector<int> m_commands;

    bool OnCommand(int nId) override {
        m_commands.push_back(nId);
        return m_known.contains(nId);
    }
    bool OnUpdateCommand(int nId, CommandState& state) override {
        const auto it = m_known.find(nId);
        if (it == m_known.end()) {
            return false;
        }
        state.bEnabled = it->second;
        return true;
    }
};

} // namespace apptest
