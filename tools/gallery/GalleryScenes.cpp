#include "GalleryScenes.h"

#include "CConfirmFile.h"
#include "COvDataItem.h"
#include "CProgressDlg.h"
#include "CTvgBaseDialog.h"
#include "CTvgMessageBox.h"
#include "TvnText.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTimer>

namespace {

constexpr uint32_t kTitleId = 100;
constexpr uint32_t kOpenFailedTextId = 656;
constexpr uint32_t kProgressTitleId = 5023;
constexpr uint32_t kExtractingTextId = 651;
constexpr uint32_t kOkTextId = 8016;
constexpr uint32_t kReplaceOrSkipTitleId = 6673;
constexpr uint32_t kCancelTextId = 6084;
constexpr int kOkId = 1;
constexpr int kCancelId = 2;
// The moving bar of the live scene: a step every tick, round and round.
constexpr int kTickMs = 40;
constexpr int kStepsPerRound = 250;
const QString kConfirmBackdrop = QStringLiteral("Image\\Dialogs\\ConfirmDialog\\bg_confirm.png");
const QString kSamplePath = QStringLiteral(
    "/home/ada/Documents/Disc images/Holiday photos 2024/DCIM/100CANON/IMG_0042.JPG");

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

CProgressDlg* Progress(int nPercent) {
    auto* pDialog = new CProgressDlg(nullptr, TvnText(kProgressTitleId), nullptr);
    pDialog->SetRange(0, 100, 1);
    pDialog->SetTextWithPath(TvnFormat(kExtractingTextId, QStringLiteral("IMG_0042.JPG")),
                             kSamplePath);
    pDialog->SetPos(nPercent);
    return pDialog;
}

// The bar runs for as long as the dialog is up, as it does while the program extracts.
QWidget* MovingProgress() {
    CProgressDlg* pDialog = Progress(0);
    auto* pTimer = new QTimer(pDialog);
    QObject::connect(pTimer, &QTimer::timeout, pDialog, [pDialog, nStep = 0]() mutable {
        nStep = (nStep + 1) % kStepsPerRound;
        pDialog->SetPos(nStep * 100 / kStepsPerRound);
    });
    pTimer->start(kTickMs);
    return pDialog;
}

QWidget* CancelledProgress() {
    CProgressDlg* pDialog = Progress(73);
    pDialog->SetText(TvnText(5109));
    pDialog->ShowCancel(false);
    return pDialog;
}

std::vector<GalleryScene> ProgressScenes() {
    return {
        {QStringLiteral("progress-40"), QStringLiteral("Extracting, 40 percent done"),
         [] { return Progress(40); }},
        {QStringLiteral("progress-moving"), QStringLiteral("The bar moving round and round"),
         [] { return MovingProgress(); }},
        {QStringLiteral("progress-stopping"),
         QStringLiteral("After Cancel: stopping, the button gone"),
         [] { return CancelledProgress(); }},
    };
}

// A base dialog on the overwrite question's backdrop with the controls of one style word.
class SampleBaseDialog : public CTvgBaseDialog {
public:
    SampleBaseDialog(uint32_t nStyle, bool bRaised) : m_nStyle(nStyle) {
        SetCaptionRaised(bRaised);
    }

protected:
    bool OnInitDialog() override {
        CTvgBaseDialog::OnInitDialog();
        CreateControls(kReplaceOrSkipTitleId, kConfirmBackdrop, kOkTextId, kOkId, kCancelTextId,
                       kCancelId, 0, 0, m_nStyle);
        return true;
    }

private:
    uint32_t m_nStyle;
};

std::vector<GalleryScene> BaseDialogScenes() {
    using S = CTvgBaseDialog;
    const uint32_t kAll = S::kMinimise | S::kClose | S::kFirstButton | S::kSecondButton |
                          S::kTitle | S::kIcon | S::kLogo | S::kExtra;
    return {
        {QStringLiteral("base-all"), QStringLiteral("A base dialog with every control"),
         [kAll] { return new SampleBaseDialog(kAll, false); }},
        {QStringLiteral("base-all-raised"), QStringLiteral("Every control, the caption row raised"),
         [kAll] { return new SampleBaseDialog(kAll, true); }},
        {QStringLiteral("base-title-close-one-button"),
         QStringLiteral("Title, close button and one push button"),
         [] { return new SampleBaseDialog(S::kTitle | S::kClose | S::kFirstButton, false); }},
        {QStringLiteral("base-none"), QStringLiteral("Style 0: the backdrop alone"),
         [] { return new SampleBaseDialog(0, false); }},
    };
}

// The overwrite question about an entry on the disk of the given kind, which the scene makes in
// a folder of its own, and the entry of the same name from the image.
class SampleConfirm : public CConfirmFile {
public:
    explicit SampleConfirm(bool bFolder)
        : m_root(QStringLiteral("HOLIDAY_2024"), COvDataItem::KindRoot, 0, 0) {
        const QString name = bFolder ? QStringLiteral("DCIM") : QStringLiteral("IMG_0042.JPG");
        const QString path = m_dir.filePath(name);
        if (bFolder) {
            QDir().mkpath(path);
        } else {
            QFile file(path);
            file.open(QIODevice::WriteOnly);
            file.write(QByteArray(1'234'567, 'x'));
        }
        // 2024-07-14 10:30 UTC as a FILETIME.
        constexpr uint64_t kTicks = 133'654'266'000'000'000ull;
        m_pItem = m_root.AddChild(QStringLiteral("\\") + name,
                                  bFolder ? COvDataItem::KindFolder : COvDataItem::KindFile,
                                  bFolder ? 0 : 2'621'440, 0);
        m_pItem->m_ftTime = {static_cast<uint32_t>(kTicks), static_cast<uint32_t>(kTicks >> 32)};
        m_data = {m_pItem, path, QFileInfo(path)};
        SetData(&m_data);
    }

private:
    QTemporaryDir m_dir;
    COvDataItem m_root;
    COvDataItem* m_pItem = nullptr;
    NotifyData m_data;
};

std::vector<GalleryScene> ConfirmScenes() {
    return {
        {QStringLiteral("confirm-file"),
         QStringLiteral("The overwrite question about a file that exists"),
         [] { return new SampleConfirm(false); }},
        {QStringLiteral("confirm-folder"),
         QStringLiteral("The overwrite question about a folder that exists"),
         [] { return new SampleConfirm(true); }},
    };
}

} // namespace

const std::vector<GalleryScene>& GalleryScenes() {
    static const std::vector<GalleryScene> scenes = [] {
        std::vector<GalleryScene> all = MessageBoxScenes();
        for (auto&& more : {ProgressScenes(), BaseDialogScenes(), ConfirmScenes()}) {
            all.insert(all.end(), more.begin(), more.end());
        }
        return all;
    }();
    return scenes;
}
