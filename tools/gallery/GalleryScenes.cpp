#include "GalleryScenes.h"

#include "CTvgMessageBox.h"

namespace {

constexpr uint32_t kTitleId = 100;
constexpr uint32_t kOpenFailedTextId = 656;

const QString kLongText = QStringLiteral(
    "The files could not be extracted because the target folder lies on a disk that has no room "
    "left for them. Free some room on that disk, or choose a folder on another disk, and then "
    "try the extraction again. Ovrin keeps the files it already extracted, so you only need to "
    "extract the rest.");

QWidget* MessageBox(const QString& text, uint32_t nType) {
    return new CTvgMessageBox(text, nType, kTitleId, nullptr,
                              QString::fromUtf16(kDefaultMessageIcon), false);
}

QString TallText() {
    QString text;
    for (int i = 1; i <= 40; ++i) {
        text += QStringLiteral("Line %1 of a report that is far too long for one box.\n").arg(i);
    }
    return text;
}

std::vector<GalleryScene> MessageBoxScenes() {
    return {
        {QStringLiteral("message-ok"), QStringLiteral("A numbered message, OK, the warning icon"),
         [] {
             return new CTvgMessageBox(kOpenFailedTextId, mb::kOk, kTitleId, nullptr,
                                       QString::fromUtf16(kDefaultMessageIcon), false);
         }},
        {QStringLiteral("message-ok-cancel-question"),
         QStringLiteral("OK and Cancel with the question icon"),
         [] {
             return MessageBox(QStringLiteral("Do you want to extract the selected files to the "
                                              "folder you chose?"),
                               mb::kOkCancel | mb::kIconQuestion);
         }},
        {QStringLiteral("message-yes-no-cancel"), QStringLiteral("Yes, No and Cancel"),
         [] {
             return MessageBox(QStringLiteral("The image has changed since it was opened. Open "
                                              "it again before extracting?"),
                               mb::kYesNoCancel);
         }},
        {QStringLiteral("message-abort-retry-ignore-long"),
         QStringLiteral("A long paragraph with Abort, Retry and Ignore, no icon"),
         [] { return MessageBox(kLongText, mb::kAbortRetryIgnore); }},
        {QStringLiteral("message-retry-cancel-error"),
         QStringLiteral("Retry and Cancel with the error icon"),
         [] {
             return MessageBox(QStringLiteral("Part of the image could not be read."),
                               mb::kRetryCancel | mb::kIconError);
         }},
        {QStringLiteral("message-information-multiline"),
         QStringLiteral("Several short lines with the information icon"),
         [] {
             return MessageBox(QStringLiteral("Extracted: 1,204 files\nSkipped: 3 files\n"
                                              "Folder: /home/ada/Images/holiday"),
                               mb::kOk | mb::kIconInformation);
         }},
        {QStringLiteral("message-tall"), QStringLiteral("Text taller than the box can grow"),
         [] { return MessageBox(TallText(), mb::kOk | mb::kIconWarning); }},
        {QStringLiteral("message-empty"), QStringLiteral("An empty text with Yes and No"),
         [] { return MessageBox(QString(), mb::kYesNo); }},
    };
}

} // namespace

const std::vector<GalleryScene>& GalleryScenes() {
    static const std::vector<GalleryScene> scenes = [] {
        std::vector<GalleryScene> all = MessageBoxScenes();
        return all;
    }();
    return scenes;
}
