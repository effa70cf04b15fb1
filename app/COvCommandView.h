// The fixed strip above the two panes: a row of picture buttons, one a command. It decides
// nothing itself: a click goes to the command target, and the target's command route says
// which buttons are enabled, every 200 ms and after each command.
#pragma once

#include <QWidget>
#include <span>
#include <vector>

class CGXTButton;
class ICommandTarget;
class QTimer;

class COvCommandView : public QWidget {
    Q_OBJECT
public:
    static constexpr int kUpdateIntervalMs = 200;

    explicit COvCommandView(QWidget* pParent = nullptr);
    ~COvCommandView() override;

    // The target is not owned; null stops clicks and updates.
    void SetCommandTarget(ICommandTarget* pTarget);
    // Replaces the row with one button for each id; an id of 0 keeps its slot without a
    // button. Returns the number of buttons whose picture could not be read.
    int CreateButtons(std::span<const int> ids);
    // The button of that id, or null.
    CGXTButton* Button(int nId) const;
    // Asks the target's route for each button's state.
    void UpdateButtons();
    // The base name of a button's picture at the present interface scale.
    static QString PictureName(int nId);

protected:
    void paintEvent(QPaintEvent* pEvent) override;

private:
    void RemoveButtons();
    void OnClicked(int nId);

    std::vector<CGXTButton*> m_buttons;
    ICommandTarget* m_pTarget = nullptr;
    QTimer* m_pUpdateTimer = nullptr;
};
