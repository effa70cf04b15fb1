// The folder tree's control: labels are never edited, and the right button only takes the
// focus, as this pane has no context menu.
#pragma once

#include <QTreeWidget>

class COvTreeCtrl : public QTreeWidget {
    Q_OBJECT
public:
    explicit COvTreeCtrl(QWidget* pParent = nullptr);

protected:
    void mousePressEvent(QMouseEvent* pEvent) override;
};
