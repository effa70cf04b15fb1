#pragma once

#include <QImage>
#include <QString>
#include <vector>

// The program's icon: a disc with an accent label on a slate tile. It is described once as
// layers on a grid of 256 units, from which both the scalable SVG and the PNG of any size
// are made, so the two never differ.
class ProgramIcon {
public:
    static constexpr int kGrid = 256;

    static QString svg();
    static QImage png(int size);

    // The icon flattened on a ground picture of its size, for places that want no alpha.
    static QImage onGround(const QImage& ground);

    // Sizes of the hicolor theme that the desktop gets besides the scalable one.
    static std::vector<int> desktopSizes();
};
