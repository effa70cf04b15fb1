// The double buffer of one paint: everything drawn on it lands on the target in one copy when
// it goes out of scope. Used on the stack; its area is the target's clip, or a given rectangle.
// The buffer starts unfilled: whoever draws must cover it.
#pragma once

#include <QImage>
#include <QPainter>
#include <QRect>

class CDBufferDC : public QPainter {
public:
    explicit CDBufferDC(QPainter* pTarget, const QRect* pArea = nullptr);
    ~CDBufferDC();
    CDBufferDC(const CDBufferDC&) = delete;
    CDBufferDC& operator=(const CDBufferDC&) = delete;

    QRect Area() const { return m_rcArea; }

private:
    QImage m_surface;
    QPainter* m_pTarget; // not owned
    QRect m_rcArea;      // in the target's coordinates
};
