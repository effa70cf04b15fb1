#include "COvTreeCtrl.h"

#include <QMouseEvent>

COvTreeCtrl::COvTreeCtrl(QWidget* pParent) : QTreeWidget(pParent) {
    setHeaderHidden(true);
    setColumnCount(1);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionMode(QAbstractItemView::SingleSelection);
    // Only the root stands at the top level, and it has no button of its own.
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setExpandsOnDoubleClick(true);
}

void COvTreeCtrl::mousePressEvent(QMouseEvent* pEvent) {
    if (pEvent->button() == Qt::RightButton) {
        setFocus(Qt::MouseFocusReason);
        pEvent->accept();
        return;
    }
    QTreeWidget::mousePressEvent(pEvent);
}
