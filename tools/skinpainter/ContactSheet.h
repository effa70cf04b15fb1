#pragma once

#include <QImage>

// Pictures for looking at the skin: every picture of the catalog at twice its size on a
// mid-grey ground, and the dialogs and the main window put together from their pictures.
class ContactSheet {
public:
    static QImage pictures();
    static QImage mockups();
};
