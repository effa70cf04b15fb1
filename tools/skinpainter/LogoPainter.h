#pragma once

#include <QImage>

// The program's name as a wordmark, on a transparent ground: "Ovrin" in white, optionally
// followed by "Viewer" in the accent colour.
class LogoPainter {
public:
    static QImage wordmark(QSize size, bool withViewer);
};
