// The dialogs of the skinned toolkit with sample content, one scene a dialog, for a person to
// look at and for screenshots.
#pragma once

#include <QString>
#include <functional>
#include <vector>

class QWidget;

struct GalleryScene {
    QString strName;        // a file name: lower case and dashes
    QString strDescription; // what a person sees
    // Makes the dialog, set up and ready to be shown; the caller owns it.
    std::function<QWidget*()> make;
};

const std::vector<GalleryScene>& GalleryScenes();
