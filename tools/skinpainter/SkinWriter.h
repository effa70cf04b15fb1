#pragma once

#include <QString>

// Writes the painted pictures as files.
class SkinWriter {
public:
    // Paints every picture of the catalog into skinDir; returns the number of pictures that
    // could not be painted at their size or written.
    static int writeSkin(const QString& skinDir);

    // The program's icon in the hicolor layout under iconsDir (hicolor/<size>/apps/ovrin.png
    // and hicolor/scalable/apps/ovrin.svg); returns the number of files that failed.
    static int writeDesktopIcons(const QString& iconsDir);
};
