#pragma once

#include <QImage>

// The progress bar: a recessed track, and the accent fill that is revealed over it from the
// left as far as the progress goes.
class BarPainter {
public:
    static QImage track(QSize size);
    static QImage fill(QSize size);
};
