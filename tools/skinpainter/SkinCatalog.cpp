#include "SkinCatalog.h"

#include "BackdropPainter.h"
#include "BarPainter.h"
#include "ButtonPainter.h"
#include "FramePainter.h"
#include "GlyphPainter.h"
#include "LogoPainter.h"
#include "ProgramIcon.h"

namespace {
// States of a strip: push and caption buttons have normal, hover, pressed and disabled; the
// command bar and the main window's caption buttons have the first three.
constexpr int kFourStates = 4;
constexpr int kThreeStates = 3;

constexpr QSize kFrameCaptionButton(22, 22);
constexpr QSize kDialogCaptionButton(20, 20);
constexpr int kCommandHeight = 23;
constexpr int kCommandHeightLarge = 35;
constexpr qreal kLargeScale = 1.5;
constexpr QSize kMessageIcon(36, 36);
constexpr QSize kDialogBar(438, 28);
constexpr QSize kDefaultBar(300, 20);

// Where the main window's icon stands on its caption band.
constexpr QPoint kFrameIconAt(8, 5);
constexpr int kFrameIcon = 32;

void addFrame(std::vector<SkinPicture>& all) {
    for (int cell : {1, 2, 3, 4, 6, 7, 8, 9}) {
        all.push_back({QStringLiteral("MainFrame/bg_fireBro_0%1.png").arg(cell),
                       FramePainter::pieceSize(cell), 1,
                       [cell] { return FramePainter::piece(cell); }});
    }
    all.push_back({"MainFrame/icon_tvn_non_alpha.png", {kFrameIcon, kFrameIcon}, 1, [] {
                       const QImage band = FramePainter::captionBand(
                           {kFrameIconAt.x() + kFrameIcon, FramePainter::kCaptionHeight});
                       return ProgramIcon::onGround(
                           band.copy(QRect(kFrameIconAt, QSize(kFrameIcon, kFrameIcon))));
                   }});
    all.push_back({"MainFrame/filebro_Tvn.png", {102, 30}, 1, [] {
                       return LogoPainter::wordmark({102, 30}, true);
                   }});
}

void addFrameCaptionButtons(std::vector<SkinPicture>& all) {
    const std::pair<const char*, CaptionGlyph> buttons[] = {{"min", CaptionGlyph::Minimise},
                                                            {"max", CaptionGlyph::Maximise},
                                                            {"restore", CaptionGlyph::Restore},
                                                            {"close", CaptionGlyph::Close},
                                                            {"update", CaptionGlyph::Update}};
    for (const auto& [name, glyph] : buttons) {
        all.push_back({QStringLiteral("MainFrame/btn_caption_%1.png").arg(name),
                       kFrameCaptionButton, kThreeStates, [glyph] {
                           return ButtonPainter::caption(kFrameCaptionButton, kThreeStates, glyph);
                       }});
    }
    all.push_back({"MainFrame/btn_caption_update_disabled.png", kFrameCaptionButton, 1, [] {
                       return ButtonPainter::caption(kFrameCaptionButton, 1, CaptionGlyph::Update,
                                                     ButtonPainter::kStateDisabled);
                   }});
}

void addCommandBar(std::vector<SkinPicture>& all) {
    // Each button is as wide as its icon and label need; widthLarge 0 means there is no
    // picture at one and a half times the size.
    struct Command {
        const char* name;
        CommandIcon icon;
        const char* label;
        int width;
        int widthLarge;
    };
    const Command commands[] = {
        {"btn_open", CommandIcon::Open, "Open", 70, 105},
        {"btn_view", CommandIcon::View, "View", 68, 102},
        {"btn_extract", CommandIcon::Extract, "Extract", 82, 123},
        {"btn_viewmode", CommandIcon::ViewMode, "Views", 84, 126},
        {"btn_burn", CommandIcon::Burn, "Burn", 68, 102},
        {"btn_mount", CommandIcon::Mount, "Mount", 76, 114},
    };
    for (const Command& c : commands) {
        const bool menu = c.icon == CommandIcon::ViewMode;
        const QSize piece(c.width, kCommandHeight);
        all.push_back(
            {QStringLiteral("MainFrame/%1.png").arg(c.name), piece, kThreeStates, [c, menu, piece] {
                 return ButtonPainter::command(piece, kThreeStates, c.icon, c.label, 1.0, menu);
             }});
        const QSize large(c.widthLarge, kCommandHeightLarge);
        all.push_back({QStringLiteral("MainFrame/%1_150.png").arg(c.name), large, kThreeStates,
                       [c, menu, large] {
                           return ButtonPainter::command(large, kThreeStates, c.icon, c.label,
                                                         kLargeScale, menu);
                       }});
    }
}

void addBaseDialog(std::vector<SkinPicture>& all) {
    const std::pair<const char*, CaptionGlyph> buttons[] = {
        {"btn_caption_close", CaptionGlyph::Close},
        {"btn_caption_under", CaptionGlyph::Minimise},
        {"btn_bb", CaptionGlyph::Update}};
    for (const auto& [name, glyph] : buttons) {
        all.push_back({QStringLiteral("Dialogs/BaseDialog/%1.png").arg(name), kDialogCaptionButton,
                       kFourStates, [glyph] {
                           return ButtonPainter::caption(kDialogCaptionButton, kFourStates, glyph);
                       }});
    }
    all.push_back({"Dialogs/BaseDialog/icon_tvg_logo.png", {93, 17}, 1, [] {
                       return LogoPainter::wordmark({93, 17}, true);
                   }});
    all.push_back({"icon_tvn_24.png", {24, 24}, 1, [] { return ProgramIcon::png(24); }});
    all.push_back({"Common/button/btn.png", {136, 24}, kFourStates, [] {
                       return ButtonPainter::push({136, 24}, kFourStates, ButtonTone::Neutral);
                   }});
}

void addConfirmDialog(std::vector<SkinPicture>& all) {
    all.push_back({"Dialogs/ConfirmDialog/bg_confirm.png", {620, 301}, 1, [] {
                       return BackdropPainter::dialog({620, 301});
                   }});
    const std::tuple<const char*, QSize, ButtonTone> buttons[] = {
        {"btn_yes_s", {68, 24}, ButtonTone::Primary},
        {"btn_68_24", {68, 24}, ButtonTone::Neutral},
        {"btn_136_24", {136, 24}, ButtonTone::Neutral}};
    for (const auto& [name, size, tone] : buttons) {
        all.push_back({QStringLiteral("Dialogs/ConfirmDialog/%1.png").arg(name), size, kFourStates,
                       [size, tone] { return ButtonPainter::push(size, kFourStates, tone); }});
    }
    all.push_back({"Dialogs/ConfirmDialog/icon_task.png", {30, 30}, 1, [] {
                       return GlyphPainter::document({30, 30});
                   }});
    all.push_back({"Dialogs/ConfirmDialog/icon_replace.png", {48, 48}, 1, [] {
                       return GlyphPainter::replace({48, 48});
                   }});
}

void addMessageBox(std::vector<SkinPicture>& all) {
    // The box's backdrop for its title and icon to blend over: as wide as the widest box.
    all.push_back({"Dialogs/MessageBox/bg_re_04.png", {1024, 208}, 1, [] {
                       return BackdropPainter::dialog({1024, 208});
                   }});
    const char* rows[] = {"top", "mid", "bot"};
    const char* columns[] = {"left", "mid", "right"};
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            all.push_back({QStringLiteral("Dialogs/MessageBox/bg_message_%1_%2.png")
                               .arg(columns[column], rows[row]),
                           BackdropPainter::messagePieceSize(row, column), 1,
                           [row, column] { return BackdropPainter::messagePiece(row, column); }});
        }
    }
    const std::pair<const char*, MessageIcon> icons[] = {{"exclamation", MessageIcon::Notice},
                                                         {"warning", MessageIcon::Warning},
                                                         {"error", MessageIcon::Error},
                                                         {"question", MessageIcon::Question}};
    for (const auto& [name, icon] : icons) {
        all.push_back({QStringLiteral("Dialogs/MessageBox/icon_%1.png").arg(name), kMessageIcon, 1,
                       [icon] { return GlyphPainter::message(kMessageIcon, icon); }});
    }
}

void addProgress(std::vector<SkinPicture>& all) {
    all.push_back({"Dialogs/ProgressDialog/bg_progress_dialog.png", {468, 164}, 1, [] {
                       return BackdropPainter::dialog({468, 164});
                   }});
    const std::pair<const char*, QSize> bars[] = {{"_438", kDialogBar}, {"", kDefaultBar}};
    for (const auto& [suffix, size] : bars) {
        all.push_back({QStringLiteral("Common/progressCtrl/progress_bg%1.png").arg(suffix), size, 1,
                       [size] { return BarPainter::track(size); }});
        all.push_back({QStringLiteral("Common/progressCtrl/progress_unit%1.png").arg(suffix), size,
                       1, [size] { return BarPainter::fill(size); }});
    }
}

std::vector<SkinPicture> makeCatalog() {
    std::vector<SkinPicture> all;
    addFrame(all);
    addFrameCaptionButtons(all);
    addCommandBar(all);
    addBaseDialog(all);
    addConfirmDialog(all);
    addMessageBox(all);
    addProgress(all);
    return all;
}
} // namespace

const std::vector<SkinPicture>& SkinCatalog::pictures() {
    static const std::vector<SkinPicture> all = makeCatalog();
    return all;
}

const SkinPicture* SkinCatalog::find(const QString& path) {
    for (const SkinPicture& picture : pictures()) {
        if (picture.path == path)
            return &picture;
    }
    return nullptr;
}
