// The program's message box: a modal, frameless dialog with a white-on-dark body that grows with
// its text, a title line, an icon, one to three buttons and a close button. It takes the type
// words of the Windows message box (buttons in the low four bits, icon in the next four) and
// ends with the same result values, so that callers read like the family's other programs.
#pragma once

#include "CControlFactory.h"
#include "ToolkitTypes.h"

#include <QDialog>
#include <QFont>
#include <QImage>
#include <QRect>
#include <QSize>
#include <QString>
#include <memory>
#include <vector>

class CAlphaButton;
class CAlphaStatic;
class CGStatic;
class QPainter;

namespace mb {
// Type words.
inline constexpr uint32_t kOk = 0x0;
inline constexpr uint32_t kOkCancel = 0x1;
inline constexpr uint32_t kAbortRetryIgnore = 0x2;
inline constexpr uint32_t kYesNoCancel = 0x3;
inline constexpr uint32_t kYesNo = 0x4;
inline constexpr uint32_t kRetryCancel = 0x5;
inline constexpr uint32_t kIconError = 0x10;
inline constexpr uint32_t kIconQuestion = 0x20;
inline constexpr uint32_t kIconWarning = 0x30;
inline constexpr uint32_t kIconInformation = 0x40;
inline constexpr uint32_t kButtonMask = 0x0F;
inline constexpr uint32_t kIconMask = 0xF0;

// Results.
inline constexpr int kIdOk = 1;
inline constexpr int kIdCancel = 2;
inline constexpr int kIdAbort = 3;
inline constexpr int kIdRetry = 4;
inline constexpr int kIdIgnore = 5;
inline constexpr int kIdYes = 6;
inline constexpr int kIdNo = 7;
} // namespace mb

// The window role, and the object name, of every message box.
inline constexpr char16_t kMessageBoxClassName[] = u"Torvane Message Box";
inline constexpr char16_t kDefaultMessageIcon[] = u"Image\\Dialogs\\MessageBox\\icon_warning.png";

class CTvgMessageBox : public QDialog {
    Q_OBJECT
public:
    // The close button's control id; the others are their captions' text numbers.
    static constexpr int kCloseId = 2;

    // iconPath is relative to the program's folder; only types whose button bits are above 5
    // use it, the others take the icon of their type.
    CTvgMessageBox(uint32_t nTextId, uint32_t nType, uint32_t nTitleId, QWidget* pParent,
                   const QString& iconPath, bool bTopMost);
    CTvgMessageBox(const QString& text, uint32_t nType, uint32_t nTitleId, QWidget* pParent,
                   const QString& iconPath, bool bTopMost);
    CTvgMessageBox(const QString& text, const QString& title, uint32_t nType, QWidget* pParent,
                   const QString& iconPath, bool bTopMost);
    ~CTvgMessageBox() override;
    CTvgMessageBox(const CTvgMessageBox&) = delete;
    CTvgMessageBox& operator=(const CTvgMessageBox&) = delete;

    // The button ids of a type word, right to left.
    static std::vector<int> ButtonIds(uint32_t nType);
    // The icon of a type word; argument is the caller's path, an empty result means none.
    static QString IconPathFor(uint32_t nType, const QString& argument);
    // Message boxes that exist now; a box counts from its set-up to its destruction.
    static int OpenCount();

    // Device pixels.
    QSize BoxSize() const;
    QRect TextRect() const;
    const QImage& Body() const { return m_body; }
    QString IconPath() const { return m_iconPath; }
    bool TopMost() const { return m_bTopMost; }
    CGStatic* Icon() const { return m_pIcon.get(); }
    CAlphaStatic* TitleStatic() const { return m_pTitle.get(); }
    CAlphaButton* CloseButton() const { return m_pClose.get(); }
    // Right to left.
    std::vector<CAlphaButton*> Buttons() const;

    void accept() override;
    void reject() override;

protected:
    virtual void OnOK();
    virtual void OnCancel();
    virtual void OnYes();
    virtual void OnNo();
    virtual void OnRetry();
    virtual void OnIgnore();
    virtual void OnAbort();

    bool event(QEvent* pEvent) override;
    void paintEvent(QPaintEvent* pEvent) override;
    void mousePressEvent(QMouseEvent* pEvent) override;
    void keyPressEvent(QKeyEvent* pEvent) override;

private:
    void OnInitDialog();
    void CreateTitleAndIcon();
    void ComposeBody();
    QRect MeasureText(const QRect& room, uint32_t nFlags) const;
    void DrawPieces(QPainter& painter, int nExtraWidth, int nExtraHeight) const;
    void DrawTextIntoBody();
    void ApplyShape();
    void CreateButtons();
    void PlaceTitleAndIcon();
    void OnCommand(int nId);

    bool m_bTopMost;
    QString m_text;
    QString m_title;
    QString m_iconPath;
    std::unique_ptr<CGStatic> m_pIcon;
    std::vector<std::unique_ptr<CAlphaButton>> m_buttons;
    std::unique_ptr<CAlphaStatic> m_pTitle;
    std::unique_ptr<CAlphaButton> m_pClose;
    uint32_t m_nType;
    // The box is laid out at 1.0 in m_size and m_rcText, and drawn at this scale.
    double m_scale;
    QSize m_size;
    QImage m_body;
    CControlFactory m_factory;
    QFont m_titleFont;
    QFont m_bodyFont;
    QRect m_rcText;
};

// Show a box and wait for the answer; the result is one of the mb::kId values. The text is a
// text number or a finished text, the title a text number.
int ShowMessageBox(uint32_t nTextId, uint32_t nType, uint32_t nTitleId, QWidget* pParent,
                   const QString& iconPath, bool bTopMost);
int ShowMessageBoxText(const QString& text, uint32_t nType, uint32_t nTitleId, QWidget* pParent,
                       const QString& iconPath, bool bTopMost);
