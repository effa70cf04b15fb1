// The program's one progress window: frameless and modeless, shaped by its backdrop, with a
// title, a line or two of text, the bar and a cancel button. It does no work and owns no
// thread: the owner tells it the position, and a cancel goes back to the notify window as a
// posted message.
#pragma once

#include "CControlFactory.h"

#include <QDialog>
#include <QFont>
#include <QImage>
#include <QPointer>
#include <QSize>
#include <QString>
#include <cstdint>

class CAlphaButton;
class CAlphaStatic;
class CApProgressCtrl;

// Posted to the notify window on cancel, with wParam the cancelled flag and lParam 0.
inline constexpr uint32_t wmProgressCancel = 3034;

class CProgressDlg : public QDialog {
    Q_OBJECT
public:
    static constexpr int kCancelId = 1211;
    static constexpr int kCloseId = 2;

    // pParent null: the main window. pNotify may be null: then a cancel only sets the flag.
    // The whole window follows the DPI scale, as every skinned dialog does.
    CProgressDlg(QWidget* pParent, const QString& title, QWidget* pNotify);
    ~CProgressDlg() override;

    void SetRange(int nLower, int nUpper, int nStep);
    // Repaints the bar only when the rounded percentage changes.
    void SetPos(int nPos);
    void ShowCancel(bool bShow);
    // Cut to the text label's width with an ellipsis; false when it equals the text shown.
    bool SetText(const QString& text);
    bool SetTextNoTruncate(const QString& text);
    // The path cut at its end to kPathWidth pixels, on a line below the prefix.
    bool SetTextWithPath(const QString& prefix, const QString& path);
    void SetTitle(const QString& title);
    void SetCancelCaption(const QString& caption);
    bool IsCancelled() const { return m_bCancelled; }
    QString GetText() const { return m_strText; }

    int Percent() const { return m_nPercent; }
    CApProgressCtrl* Bar() const { return m_pBar; }
    CAlphaButton* CancelButton() const { return m_pCancel; }
    CAlphaButton* CloseButton() const { return m_pClose; }
    CAlphaStatic* TextStatic() const { return m_pText; }
    CAlphaStatic* TitleStatic() const { return m_pTitle; }

protected:
    bool event(QEvent* pEvent) override;
    void paintEvent(QPaintEvent* pEvent) override;
    void mousePressEvent(QMouseEvent* pEvent) override;
    void keyPressEvent(QKeyEvent* pEvent) override;
    void closeEvent(QCloseEvent* pEvent) override;

private:
    static constexpr int kPathWidth = 400;

    void OnInitDialog();
    void MakeFonts();
    void LoadBackdrop();
    void CreateChildren();
    void OnCancelRequest();
    bool ShowText(const QString& text);

    CAlphaStatic* m_pTitle = nullptr;
    CAlphaButton* m_pClose = nullptr;
    CAlphaStatic* m_pText = nullptr;
    CApProgressCtrl* m_pBar = nullptr;
    CAlphaButton* m_pCancel = nullptr;
    // The window is laid out at 1.0 in m_size and drawn at m_scale.
    double m_scale;
    QSize m_size;
    QImage m_memory;
    CControlFactory m_factory;
    QPointer<QWidget> m_pParent;
    QPointer<QWidget> m_pNotify;
    bool m_bCancelled = false;
    int m_nPos = 0;
    int m_nPercent = 0;
    int m_nStep = 1;
    int m_nUpper = 100;
    int m_nLower = 0;
    QString m_strTitle;
    QString m_strText;
    QFont m_titleFont;
    QFont m_textFont;
};
