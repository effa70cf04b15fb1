// Panes that record the commands the frame's route gives them.
#pragma once

#include "ICommandTarget.h"

#include <QWidget>
#include <map>
#include <vector>

namespace apptest {

class RecordingPane : public QWidget, public ICommandTarget {
public:
    // The commands this pane knows, with whether each is enabled.
    std::map<int, bool> m_known;
    std::vector<int> m_commands;
    std::vector<int> m_updates;

    bool OnCommand(int nId) override {
        m_commands.push_back(nId);
        return m_known.contains(nId);
    }
    bool OnUpdateCommand(int nId, CommandState& state) override {
        m_updates.push_back(nId);
        const auto it = m_known.find(nId);
        if (it == m_known.end()) {
            return false;
        }
        state.bEnabled = it->second;
        return true;
    }
};

} // namespace apptest
