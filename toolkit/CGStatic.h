// The picture control: shows a picture at its natural size, over a piece of the parent's
// backdrop when it has one, with an optional text.
#pragma once

#include "ToolkitTypes.h"

#include <QFont>
#include <QImage>
#include <QWidget>

class CGStatic : public QWidget {
    Q_OBJECT
public:
    static constexpr int kTextColours = 4;

    explicit CGStatic(QWidget* pParent = nullptr, int nId = 0);

    // The picture (premultiplied or opaque) and its size in device pixels; the control takes
    // that size. A null picture leaves the control empty.
    void SetImage(const QImage& image, int nWidth, int nHeight);
    // The picture and the control enlarged by a dialog's scale.
    void ScaleImage(double scale);
    void SetBackdrop(const QImage& backdrop);
    void SetText(const QString& text);
    void SetFont(const QFont& font);
    void SetTipText(const QString& text);

    int Id() const { return m_nId; }
    bool HasImage() const { return !m_image.isNull(); }
    // ss::kNotify: the control takes mouse clicks.
    uint32_t Style() const { return m_nStyle; }

protected:
    void paintEvent(QPaintEvent* pEvent) override;

private:
    void UpdateAccessibleName();

    QImage m_image;
    QImage m_backdrop;
    QSize m_size;
    QString m_text;
    QFont m_font;
    // Normal, the two between (unused), disabled.
    COLORREF m_crText[kTextColours] = {kTextWhite, 0, 0, kTextDisabled};
    uint32_t m_nStyle;
    int m_nId;
};
