#include "CTvgDialog.h"

#include <QCloseEvent>
#include <QKeyEvent>

CTvgDialog::CTvgDialog(QWidget* pParent, Qt::WindowFlags flags) : QDialog(pParent, flags) {}

void CTvgDialog::setVisible(bool bVisible) {
    if (bVisible && !m_bInitialised) {
        m_bInitialised = true;
        OnInitDialog();
    }
    QDialog::setVisible(bVisible);
}

bool CTvgDialog::OnInitDialog() {
    return true;
}

void CTvgDialog::OnCancel() {
    QDialog::reject();
}

void CTvgDialog::keyPressEvent(QKeyEvent* pEvent) {
    if (pEvent->key() == Qt::Key_Escape && pEvent->modifiers() == Qt::NoModifier) {
        OnCancel();
        return;
    }
    QDialog::keyPressEvent(pEvent);
}

void CTvgDialog::closeEvent(QCloseEvent* pEvent) {
    OnCancel();
    // A dialog whose cancel keeps it open stays open.
    pEvent->setAccepted(!isVisible());
}
