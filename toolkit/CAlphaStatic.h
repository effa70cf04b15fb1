// The text label of the skinned dialogs: paints its text in its own colour over whatever the
// parent painted below it, or over its own background colour.
#pragma once

#include "ToolkitTypes.h"

#include <QFont>
#include <QWidget>

namespace ss {
inline constexpr uint32_t kCenter = 0x1;
inline constexpr uint32_t kRight = 0x2;
inline constexpr uint32_t kLeftNoWordWrap = 0xC;
inline constexpr uint32_t kTypeMask = 0x1F;
inline constexpr uint32_t kNotify = 0x100;
inline constexpr uint32_t kCenterImage = 0x200;
} // namespace ss

class CAlphaStatic : public QWidget {
    Q_OBJECT
public:
    // nStyle holds the ss:: alignment flags.
    explicit CAlphaStatic(const QString& text, uint32_t nStyle, QWidget* pParent = nullptr,
                          int nId = 0);

    void SetTextColour(COLORREF colour);
    void SetBackgroundColour(COLORREF colour);
    void SetBorder(bool bBorder);
    void SetTransparent(bool bTransparent);
    void SetFont(const QFont& font);
    // Repaints only when the text changes.
    void SetText(const QString& text);
    void SetMargin(int nMargin);
    void SetWordEllipsis(bool bOn);
    void SetEditControlWrap(bool bOn);
    void SetTipText(const QString& text);

    QString Text() const { return m_text; }
    int Id() const { return m_nId; }
    // The draw flags that the style and the two wrap settings give.
    uint32_t DrawFlags() const;

protected:
    void paintEvent(QPaintEvent* pEvent) override;

private:
    void UpdateAccessibleName();

    COLORREF m_crText;
    COLORREF m_crBackground = 0;
    QFont m_font;
    bool m_bTransparent = false;
    bool m_bEditWrap = false;
    int m_nMargin = 0;
    bool m_bWordEllipsis = false;
    bool m_bBorder = false;
    uint32_t m_nStyle;
    int m_nId;
    QString m_text;
};
