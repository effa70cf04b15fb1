#include "CConfirmFile.h"

#include "CAlphaStatic.h"
#include "CFileTypeCache.h"
#include "CGButton.h"
#include "CGStatic.h"
#include "COvDataItem.h"
#include "COvListModel.h"
#include "CShellIcons.h"
#include "Formatting.h"
#include "SkinFonts.h"
#include "SkinImages.h"
#include "SkinWindows.h"
#include "TvnText.h"

#include <QPainter>

namespace {

constexpr char16_t kBackdrop[] = u"Image\\Dialogs\\ConfirmDialog\\bg_confirm.png";
constexpr char16_t kTaskIcon[] = u"Image\\Dialogs\\ConfirmDialog\\icon_task.png";
constexpr char16_t kPicture[] = u"Image\\Dialogs\\ConfirmDialog\\icon_replace.png";
constexpr char16_t kYesStrip[] = u"Image\\Dialogs\\ConfirmDialog\\btn_yes_s.png";
constexpr char16_t kNarrowStrip[] = u"Image\\Dialogs\\ConfirmDialog\\btn_68_24.png";
constexpr char16_t kWideStrip[] = u"Image\\Dialogs\\ConfirmDialog\\btn_136_24.png";

const QRect kHeadingRect = RectFromEdges(92, 60, 518, 99);
const QRect kExplanationRect = RectFromEdges(92, 104, 484, 120);
const QRect kOldIconRect = RectFromEdges(112, 129, 142, 159);
const QRect kOldTextRect = RectFromEdges(180, 129, 495, 162);
const QRect kNewLineRect = RectFromEdges(92, 180, 310, 196);
const QRect kNewIconRect = RectFromEdges(112, 205, 142, 235);
const QRect kNewTextRect = RectFromEdges(180, 205, 495, 238);
const QRect kPictureRect = RectFromEdges(26, 60, 74, 108);
// Entry icons are drawn on the colour of the panel behind them.
constexpr QRgb kIconBackground = qRgb(61, 63, 64);
constexpr int kIconSide = 30;

struct ButtonPlace {
    int nId;
    uint32_t nTextId;
    QRect rect;
    const char16_t* pStrip;
};
const ButtonPlace kButtons[] = {
    {CConfirmFile::kIdReplace, tvn::kButtonReplace, RectFromEdges(24, 267, 92, 291), kYesStrip},
    {CConfirmFile::kIdSkip, tvn::kButtonSkip, RectFromEdges(99, 267, 167, 291), kNarrowStrip},
    {CConfirmFile::kIdReplaceAll, tvn::kButtonReplaceAll, RectFromEdges(174, 267, 310, 291),
     kWideStrip},
    {CConfirmFile::kIdSkipAll, tvn::kButtonSkipAll, RectFromEdges(317, 267, 453, 291), kWideStrip},
    {CConfirmFile::kIdStop, tvn::kButtonStop, RectFromEdges(460, 267, 596, 291), kWideStrip},
};

QString SizeText(uint64_t ullSize, bool bFolder) {
    if (bFolder) {
        return QString();
    }
    double value = 0;
    QString unit;
    ScaleSize(ullSize, value, unit);
    return QString::asprintf("%.2f %s", value, qUtf8Printable(unit));
}

QImage SkinPicture(const char16_t* pPath, double scale) {
    QImage picture;
    LoadPremultipliedBitmap(QString::fromUtf16(pPath), true, picture);
    return ScalePicture(picture, scale);
}

// A 30 by 30 picture of the shell's icon for the entry, on the panel's colour; the skin's page
// where the desktop has no icon for it.
QImage EntryPicture(const QString& path, bool bFolder, double scale) {
    FileTypeRecord record;
    CFileTypeCache::Instance().GetFileType(path, bFolder, &record);
    const QPixmap icon =
        CShellIcons::Instance().Icon(record.nIcon).pixmap(qRound(kIconSide * scale));
    if (icon.isNull()) {
        return SkinPicture(kTaskIcon, scale);
    }
    const int nSide = qRound(kIconSide * scale);
    QImage picture(nSide, nSide, QImage::Format_ARGB32_Premultiplied);
    picture.fill(kIconBackground);
    QPainter painter(&picture);
    painter.drawPixmap(0, 0, icon);
    return picture;
}

} // namespace

CConfirmFile::CConfirmFile(QWidget* pParent) : CTvgBaseDialog(pParent), m_scale(DialogScale()) {
    setObjectName(QStringLiteral("CConfirmFile"));
    // Above every window, so that a question in the middle of a job is never lost behind one.
    setWindowFlag(Qt::WindowStaysOnTopHint);
}

CConfirmFile::~CConfirmFile() {
    for (CGButton* pButton : m_apButtons) {
        delete pButton;
    }
    delete m_pHeading;
    delete m_pExplanation;
    delete m_pOldText;
    delete m_pNewLine;
    delete m_pNewText;
    delete m_pPicture;
    delete m_pOldIcon;
    delete m_pNewIcon;
}

bool CConfirmFile::OnInitDialog() {
    CTvgBaseDialog::OnInitDialog();
    QImage taskIcon;
    if (LoadPremultipliedBitmap(QString::fromUtf16(kTaskIcon), true, taskIcon)) {
        setWindowIcon(QIcon(QPixmap::fromImage(taskIcon)));
    }
    const QString backdrop = QString::fromUtf16(kBackdrop);
    CreateControls(tvn::kConfirmTitle, backdrop, 0, 0, 0, 0, 0, 0, kClose | kTitle);
    m_factory.LoadBackdrop(backdrop);
    m_factory.ScaleBackdrop(m_scale);
    m_headingFont = ScaleFont(MakeDialogFont(kTitleFontNumerator, kWeightBold), m_scale);
    m_textFont = BodyFont();
    CreateTexts();
    CreateIcons();
    CreateButtons();
    FillTexts();
    return true;
}

CAlphaStatic* CConfirmFile::MakeText(int nId, const QRect& rect, const QFont& font) {
    CAlphaStatic* pText = nullptr;
    m_factory.CreateAlphaStatic(ScaleRect(rect, m_scale), this, nId, &pText, QString(), kTextWhite,
                                0, &font);
    return pText;
}

void CConfirmFile::CreateTexts() {
    m_pHeading = MakeText(kIdHeading, kHeadingRect, m_headingFont);
    m_pExplanation = MakeText(kIdExplanation, kExplanationRect, m_textFont);
    m_pOldText = MakeText(kIdOldText, kOldTextRect, m_textFont);
    m_pNewLine = MakeText(kIdNewLine, kNewLineRect, m_textFont);
    m_pNewText = MakeText(kIdNewText, kNewTextRect, m_textFont);
}

CGStatic* CConfirmFile::MakeIcon(int nId, const QRect& rect, const QImage& picture) {
    CGStatic* pIcon = nullptr;
    m_factory.CreateGStatic(ScaleRect(rect, m_scale), this, nId, &pIcon, QString());
    if (!picture.isNull()) {
        pIcon->SetImage(picture, picture.width(), picture.height());
    }
    return pIcon;
}

void CConfirmFile::CreateIcons() {
    m_pPicture = MakeIcon(0, kPictureRect, SkinPicture(kPicture, m_scale));
    if (m_pData == nullptr) {
        return;
    }
    const bool bTargetFolder = m_pData->findData.isDir();
    m_pOldIcon =
        MakeIcon(kIdOldIcon, kOldIconRect, EntryPicture(m_pData->path, bTargetFolder, m_scale));
    const COvDataItem* pItem = m_pData->pItem;
    m_pNewIcon =
        MakeIcon(kIdNewIcon, kNewIconRect,
                 pItem != nullptr ? EntryPicture(pItem->m_strName, pItem->IsFolder(), m_scale)
                                  : EntryPicture(m_pData->path, bTargetFolder, m_scale));
}

void CConfirmFile::CreateButtons() {
    QFont font = m_textFont;
    for (size_t i = 0; i < std::size(kButtons); ++i) {
        const ButtonPlace& place = kButtons[i];
        QImage strip;
        LoadPremultipliedBitmap(QString::fromUtf16(place.pStrip), true, strip);
        const QRect rect = ScaleRect(place.rect, m_scale);
        auto* pButton = new CGButton(this);
        pButton->CreateWindow(this, TvnText(place.nTextId), 0, place.nId, false);
        pButton->SetImage(rect.x(), rect.y(), ScalePicture(strip, m_scale), rect.width(),
                          rect.height(), CGButton::kNormal, rect.height(), 0, false, true,
                          m_factory.Backdrop());
        pButton->SetFont(font);
        m_apButtons[i] = pButton;
    }
}

void CConfirmFile::FillTexts() {
    if (m_pData == nullptr) {
        return;
    }
    const bool bTargetFolder = m_pData->findData.isDir();
    const QString name = m_pData->findData.fileName();
    m_pHeading->SetText(TvnFormat(bTargetFolder ? tvn::kFolderExists : tvn::kFileExists, name));
    m_pExplanation->SetText(TvnText(bTargetFolder ? tvn::kMergeFolder : tvn::kReplaceFile));
    m_pOldText->SetText(EntryText(m_pData->findData));
    m_pNewLine->SetText(TvnText(tvn::kNewEntryLine));
    m_pNewText->SetText(m_pData->pItem != nullptr ? EntryText(*m_pData->pItem)
                                                  : EntryText(m_pData->findData));
}

QString CConfirmFile::EntryText(const QFileInfo& info) {
    const bool bFolder = info.isDir();
    return TvnFormat(tvn::kEntryDetails, SizeText(static_cast<uint64_t>(info.size()), bFolder),
                     FormatDateTime(info.lastModified()));
}

QString CConfirmFile::EntryText(const COvDataItem& item) {
    const bool bFolder = item.IsFolder();
    return TvnFormat(tvn::kEntryDetails, SizeText(bFolder ? 0 : item.m_ullSize, bFolder),
                     COvListModel::DateText(item.m_ftTime));
}

CGButton* CConfirmFile::Button(int nId) const {
    for (CGButton* pButton : m_apButtons) {
        if (pButton != nullptr && pButton->Id() == nId) {
            return pButton;
        }
    }
    return nullptr;
}

CAlphaStatic* CConfirmFile::Text(int nId) const {
    for (CAlphaStatic* pText : {m_pHeading, m_pExplanation, m_pOldText, m_pNewLine, m_pNewText}) {
        if (pText != nullptr && pText->Id() == nId) {
            return pText;
        }
    }
    return nullptr;
}

bool CConfirmFile::OnCommand(int nId) {
    for (const ButtonPlace& place : kButtons) {
        if (place.nId == nId) {
            done(nId);
            return true;
        }
    }
    return CTvgBaseDialog::OnCommand(nId);
}

// The caption's close button and Escape stop the job, as the stop button does.
void CConfirmFile::OnCancel() {
    done(kIdStop);
}
