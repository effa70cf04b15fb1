#pragma once

#include <QImage>
#include <QSize>
#include <QString>
#include <functional>
#include <vector>

// One picture of the skin: where it lies under the skin folder, the size of one state
// picture, how many states stand side by side, and how it is painted.
struct SkinPicture {
    QString path;
    QSize piece;
    int states = 1;
    std::function<QImage()> paint;

    QSize imageSize() const { return {piece.width() * states, piece.height()}; }
};

// Every picture of the skin, in one table.
class SkinCatalog {
public:
    static const std::vector<SkinPicture>& pictures();
    static const SkinPicture* find(const QString& path);
};
