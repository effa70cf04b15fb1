// The progress bar of the skinned dialogs: a reveal of one picture (the filled bar) over
// another (the empty track), both as wide as the control, cropped and never stretched. It
// does no work of its own and is told its position, 0 to 100.
#pragma once

#include <QImage>
#include <QRect>
#include <QString>
#include <QWidget>
#include <cstdint>

// Posted to the bar's parent when the position goes backwards, after the parent was asked to
// repaint, so that a parent drawing more than the bar can catch up.
inline constexpr uint32_t kWmProgressBackwards = 10574;

class CApProgressCtrl : public QWidget {
    Q_OBJECT
public:
    enum ImageSlot { kSlotBackground = 1, kSlotUnit = 3 };
    static constexpr int kMaxPos = 100;

    explicit CApProgressCtrl(QWidget* pParent = nullptr);

    // Places the bar at rect (device pixels) on pParent and shows it.
    bool Create(const QRect& rect, QWidget* pParent, int nId);
    // Relative picture paths; an empty one takes the default picture. A picture that is not
    // there is left out; false if either is.
    bool LoadImages(const QString& backgroundPath, const QString& unitPath);
    // Slot 1 replaces the background, slot 3 the unit; false for another slot or a picture
    // that is not there.
    bool ReplaceImage(int nSlot, const QString& relativePath);

    // Fills from the left. A smaller value than before makes the parent repaint erased and
    // posts it kWmProgressBackwards. Paints at once when the value changed.
    void SetPos(int nPos);
    // Fills from the right when bReverse; repaints later, and never posts.
    void SetPos(int nPos, bool bReverse);
    int GetPos() const { return m_nPos; }
    bool IsReverse() const { return m_bReverse; }

    void SetTipText(const QString& text);
    void SetUserData(uintptr_t nData) { m_nUserData = nData; }
    uintptr_t UserData() const { return m_nUserData; }
    int Id() const { return m_nId; }
    // The loaded pictures enlarged by a dialog's scale, as the bar is drawn 1:1 from them.
    void ScaleImages(double scale);
    // The rectangle given at creation; a new background makes its far corner a quarter of
    // the picture's width and its height.
    QRect ControlRect() const { return m_rcControl; }

protected:
    void paintEvent(QPaintEvent* pEvent) override;
    void mousePressEvent(QMouseEvent* pEvent) override;

private:
    void DrawForward(QPainter& painter, const QSizeF& size) const;
    void DrawReverse(QPainter& painter, const QSizeF& size) const;

    QImage m_background;
    QImage m_unit;
    QRect m_rcControl;
    int m_nPos = 0;
    bool m_bReverse = false;
    QString m_tipText;
    uintptr_t m_nUserData = 0;
    int m_nId = 0;
};
