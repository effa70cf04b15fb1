// Panes that record the commands the frame's route gives them.
#pragma once

#include "CTvgMessageBox.h"
#include "ICommandTarget.h"

#include <QApplication>
#include <QMessageBox>
#include <QStringList>
#include <QTimer>
#include <QWidget>
#include <map>
#include <vector>

namespace apptest {

// Answers every modal box that comes up while it lives, the skinned ones and the system's, and
// keeps their texts.
class BoxCatcher {
public:
    static constexpr int kPollMs = 5;

    BoxCatcher() {
        m_poll.setInterval(kPollMs);
        QObject::connect(&m_poll, &QTimer::timeout, [this] { CloseActiveBox(); });
        m_poll.start();
    }
    QStringList m_lstTexts;
    // Boxes that came up unable to take the user's answer.
    int m_nDisabled = 0;

private:
    void CloseActiveBox() {
        QWidget* pModal = QApplication::activeModalWidget();
        if (auto* pBox = qobject_cast<CTvgMessageBox*>(pModal); pBox && pBox->isVisible()) {
            m_lstTexts << pBox->accessibleDescription();
            m_nDisabled += pBox->isEnabled() ? 0 : 1;
            pBox->reject();
        } else if (auto* pSystem = qobject_cast<QMessageBox*>(pModal);
                   pSystem && pSystem->isVisible()) {
            m_lstTexts << pSystem->text();
            pSystem->reject();
        }
    }

    QTimer m_poll;
};

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
