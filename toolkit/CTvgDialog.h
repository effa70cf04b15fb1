// The thin layer under the family's dialogs: a start-up hook that runs once before the dialog
// first shows, and one cancel path that Escape, the window manager's close and the dialog's
// own close buttons all take.
#pragma once

#include <QDialog>

class CTvgDialog : public QDialog {
    Q_OBJECT
public:
    explicit CTvgDialog(QWidget* pParent = nullptr, Qt::WindowFlags flags = Qt::Dialog);

    void setVisible(bool bVisible) override;

protected:
    // Runs once, before the first show; derived dialogs make their controls here.
    virtual bool OnInitDialog();
    // Closes the dialog as cancelled.
    virtual void OnCancel();

    void keyPressEvent(QKeyEvent* pEvent) override;
    void closeEvent(QCloseEvent* pEvent) override;

private:
    bool m_bInitialised = false;
};
