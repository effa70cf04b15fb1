// The skinned dialog of the family: a frameless window whose shape, size and whole face come
// from one picture, with a caption row of small buttons, a title and up to two push buttons,
// all placed by one set of numbers (device pixels). A style word says which controls exist.
#pragma once

#include "CControlFactory.h"
#include "CTvgDialog.h"

#include <QFont>
#include <QIcon>
#include <QImage>
#include <QSize>
#include <cstdint>

class CAlphaButton;
class CAlphaStatic;
class CGStatic;
class CRegistry;

class CTvgBaseDialog : public CTvgDialog {
    Q_OBJECT
public:
    // The style word's bits, one a control.
    enum Style : uint32_t {
        kMinimise = 0x01,
        kClose = 0x02,
        kFirstButton = 0x04,
        kSecondButton = 0x08,
        kTitle = 0x10,
        kIcon = 0x20,
        kLogo = 0x40,
        kExtra = 0x80,
    };
    // Commands of the caption buttons, and the about command that a dialog keeps from the
    // program while it is up.
    static constexpr int kMinimiseId = 61767;
    static constexpr int kCloseId = 61797;
    static constexpr int kExtraId = 10011;
    static constexpr int kAboutId = 57664;
    // How much higher the caption row sits when raised.
    static constexpr int kRaise = 5;

    explicit CTvgBaseDialog(QWidget* pParent = nullptr);
    ~CTvgBaseDialog() override;

    // Makes the controls that nStyle names, then loads the backdrop if a path is given. The
    // push buttons are made only with both a caption and an id. x and y move the caption row,
    // for a picture with a shadow margin. The backdrop's status, or kStatusOk without one.
    int32_t CreateControls(const QString& title, const QString& backdropPath,
                           const QString& firstCaption, int nFirstId, const QString& secondCaption,
                           int nSecondId, int x, int y, uint32_t nStyle);
    // The same with texts by number; 0 leaves a text empty.
    int32_t CreateControls(uint32_t nTitleText, const QString& backdropPath, uint32_t nFirstText,
                           int nFirstId, uint32_t nSecondText, int nSecondId, int x, int y,
                           uint32_t nStyle);
    // kStatusInvalidArgument for no path, kStatusFailed for a picture that cannot be read;
    // the window then keeps its size and shape.
    int32_t LoadBackdrop(const QString& relativePath);
    // Places the caption row and the push buttons for a window of nWidth by nHeight at 1.0;
    // they land at the dialog's scale.
    void LayOut(int nWidth, int nHeight);
    void ShowControls(uint32_t nStyle, bool bShow);
    // The control of one style bit into *ppOut; any other value leaves *ppOut alone.
    void GetControl(uint32_t nStyleBit, QWidget** ppOut) const;
    // kFirstButton, kSecondButton or kTitle; others are ignored.
    void SetControlText(uint32_t nStyleBit, const QString& text);

    // Before CreateControls: the caption row kRaise pixels higher.
    void SetCaptionRaised(bool bRaised) { m_bCaptionRaised = bRaised; }
    // The settings store that decides the extra button; null, the program's.
    void SetRegistry(CRegistry* pRegistry) { m_pRegistry = pRegistry; }
    // Device pixels.
    QSize BackdropSize() const;
    const QFont& LargeFont() const { return m_largeFont; }
    const QFont& TitleFont() const { return m_titleFont; }
    const QFont& BodyFont() const { return m_bodyFont; }

protected:
    bool OnInitDialog() override;
    // A command of a child; true when handled.
    virtual bool OnCommand(int nId);

    bool event(QEvent* pEvent) override;
    void paintEvent(QPaintEvent* pEvent) override;
    void mousePressEvent(QMouseEvent* pEvent) override;
    void keyPressEvent(QKeyEvent* pEvent) override;

private:
    void MakeFonts();
    void CreateCaptionButtons(uint32_t nStyle);
    void CreatePictures(uint32_t nStyle);
    void CreatePushButtons(const QString& firstCaption, int nFirstId, const QString& secondCaption,
                           int nSecondId);
    void ApplyUpdateSetting();
    void Minimise();
    int Raise() const { return m_bCaptionRaised ? -kRaise : 0; }

    bool m_bCaptionRaised = false;
    // The dialog is laid out at 1.0, m_size included, and drawn at this scale.
    double m_scale;
    QImage m_memory;
    QSize m_size;
    CControlFactory m_factory;
    CGStatic* m_pIcon = nullptr;
    CGStatic* m_pLogo = nullptr;
    CAlphaButton* m_pExtra = nullptr;
    CAlphaButton* m_pMinimise = nullptr;
    CAlphaButton* m_pClose = nullptr;
    CAlphaStatic* m_pTitle = nullptr;
    CAlphaButton* m_pFirst = nullptr;
    CAlphaButton* m_pSecond = nullptr;
    int m_nOffsetX = 0;
    int m_nOffsetY = 0;
    QFont m_largeFont;
    QFont m_titleFont;
    QFont m_bodyFont;
    QIcon m_windowIcon;
    CRegistry* m_pRegistry = nullptr;
};
