#include "ContactSheet.h"

#include "PaintKit.h"
#include "SkinCatalog.h"
#include "SkinPalette.h"

#include <QFontMetrics>
#include <QPainter>
#include <algorithm>

using namespace SkinPalette;

namespace {
constexpr int kZoom = 2;
constexpr int kMargin = 16;
constexpr int kLabelHeight = 16;
constexpr int kMinimumWidth = 1400;
constexpr QRgb kGround = qRgb(128, 128, 128);
constexpr int kTitlePixels = 16;
constexpr int kBodyPixels = 12;

QImage picture(const QString& path) {
    return SkinCatalog::find(path)->paint();
}

QImage statePiece(const QString& path, int state) {
    const SkinPicture* strip = SkinCatalog::find(path);
    return strip->paint().copy(QRect(QPoint(strip->piece.width() * state, 0), strip->piece));
}

void text(QPainter& p, const QRect& box, const QString& words, int pixels, int flags,
          QRgb colour = kText) {
    p.setPen(QColor(colour));
    p.setFont(PaintKit::font(pixels, false));
    p.drawText(box, flags, words);
}

void button(QPainter& p, const QString& path, int state, const QRect& box, const QString& caption) {
    p.drawImage(box, statePiece(path, state));
    const QRect textBox = box.translated(0, state == 2 ? 1 : 0);
    text(p, textBox, caption, kBodyPixels, Qt::AlignCenter, state == 3 ? 0xd6d6d6 : kText);
}

// The message box's body put together from its nine pieces, as the box composes it.
QImage messageBody(int extraWidth, int extraHeight) {
    const int w = extraWidth + 468;
    const int h = extraHeight + 208;
    QImage body(w, h, QImage::Format_ARGB32_Premultiplied);
    body.fill(QColor(kKeyDialog));
    QPainter p(&body);
    std::vector<int> xs;
    for (int i = 0; i < extraWidth / 50; ++i)
        xs.push_back(456 + 50 * i);
    xs.push_back(extraWidth + 406);
    std::vector<int> ys;
    for (int j = 0; j < extraHeight / 50; ++j)
        ys.push_back(162 + 50 * j);
    ys.push_back(extraHeight + 112);
    const QString dir = QStringLiteral("Dialogs/MessageBox/bg_message_");
    p.drawImage(0, 0, picture(dir + "left_top.png"));
    for (int x : xs)
        p.drawImage(x, 0, picture(dir + "mid_top.png"));
    p.drawImage(w - 12, 0, picture(dir + "right_top.png"));
    for (int y : ys)
        p.drawImage(0, y, picture(dir + "left_mid.png"));
    for (int x : xs) {
        for (int y : ys)
            p.drawImage(x, y, picture(dir + "mid_mid.png"));
    }
    for (int y : ys)
        p.drawImage(w - 12, y, picture(dir + "right_mid.png"));
    p.drawImage(0, h - 46, picture(dir + "left_bot.png"));
    for (int x : xs)
        p.drawImage(x, h - 46, picture(dir + "mid_bot.png"));
    p.drawImage(w - 12, h - 46, picture(dir + "right_bot.png"));
    return body;
}

QImage messageBox(int extraWidth, int extraHeight, const QString& icon, const QString& message,
                  const QStringList& buttons) {
    QImage box = messageBody(extraWidth, extraHeight);
    const int w = box.width();
    const int h = box.height();
    QPainter p(&box);
    text(p, QRect((w - 400) / 2, 6, 400, 20), "Ovrin Viewer", kTitlePixels, Qt::AlignCenter);
    p.drawImage(w - 30, 5, statePiece("Dialogs/BaseDialog/btn_caption_close.png", 0));
    const QImage iconImage = picture("Dialogs/MessageBox/icon_" + icon + ".png");
    p.drawImage(50, h / 2 - iconImage.height() / 2, iconImage);
    text(p, QRect(100, 31, w - 130, h - 77), message, kBodyPixels,
         Qt::AlignLeft | Qt::AlignVCenter | Qt::TextWordWrap);
    for (int i = 0; i < buttons.size(); ++i) {
        button(p, "Common/button/btn.png", i == 0 ? 1 : 0,
               QRect(w - 146 * (i + 1), h - 34, 136, 24), buttons[i]);
    }
    return box;
}

QImage progressDialog() {
    QImage dialog = picture("Dialogs/ProgressDialog/bg_progress_dialog.png");
    const int w = dialog.width();
    const int h = dialog.height();
    QPainter p(&dialog);
    text(p, QRect((w - 200) / 2, 7, 200, 20), "Progress", kTitlePixels, Qt::AlignCenter);
    p.drawImage(w - 30, 5, statePiece("Dialogs/BaseDialog/btn_caption_close.png", 1));
    text(p, QRect(15, 39, 438, 40), "Extracting \"VIDEO_TS.VOB\"...", kBodyPixels,
         Qt::AlignCenter | Qt::TextWordWrap);
    const QRect bar(15, 82, 438, 28);
    p.drawImage(bar.topLeft(), picture("Common/progressCtrl/progress_bg_438.png"));
    const QImage unit = picture("Common/progressCtrl/progress_unit_438.png");
    p.drawImage(bar.topLeft(), unit.copy(0, 0, bar.width() * 62 / 100, bar.height()));
    button(p, "Common/button/btn.png", 2, QRect(w - 146, h - 34, 136, 24), "Cancel");
    return dialog;
}

QImage confirmDialog() {
    QImage dialog = picture("Dialogs/ConfirmDialog/bg_confirm.png");
    const int w = dialog.width();
    QPainter p(&dialog);
    text(p, QRect((w - 200) / 2, 6, 200, 20), "Replace or Skip", kTitlePixels, Qt::AlignCenter);
    p.drawImage(w - 30, 5, statePiece("Dialogs/BaseDialog/btn_caption_close.png", 0));
    text(p, QRect(92, 60, 426, 39), "A file named \"readme.txt\" already exists in this folder.",
         kBodyPixels, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextWordWrap);
    text(p, QRect(92, 104, 392, 16), "Do you want to replace it with the file from the image?",
         kBodyPixels, Qt::AlignLeft);
    const QImage icon = picture("Dialogs/ConfirmDialog/icon_task.png");
    p.drawImage(112, 129, icon);
    text(p, QRect(180, 129, 315, 33), "12.40 KB\nModified: 2024-03-02 10:15", kBodyPixels,
         Qt::AlignLeft);
    text(p, QRect(92, 180, 218, 16), "with this one?", kBodyPixels, Qt::AlignLeft);
    p.drawImage(112, 205, icon);
    text(p, QRect(180, 205, 315, 33), "13.02 KB\nModified: 2024-05-19 08:40", kBodyPixels,
         Qt::AlignLeft);
    const QString dir = QStringLiteral("Dialogs/ConfirmDialog/");
    button(p, dir + "btn_yes_s.png", 0, QRect(24, 267, 68, 24), "Replace");
    button(p, dir + "btn_68_24.png", 1, QRect(99, 267, 68, 24), "Skip");
    button(p, dir + "btn_136_24.png", 0, QRect(174, 267, 136, 24), "Replace All");
    button(p, dir + "btn_136_24.png", 3, QRect(317, 267, 136, 24), "Skip All");
    button(p, dir + "btn_136_24.png", 2, QRect(460, 267, 136, 24), "Stop");
    return dialog;
}

void frameBorder(QPainter& p, int w, int h) {
    const auto piece = [](int cell) {
        return picture(QStringLiteral("MainFrame/bg_fireBro_0%1.png").arg(cell));
    };
    for (int y = 43; y < h - 6; y += 3) {
        p.drawImage(0, y, piece(4));
        p.drawImage(w - 10, y, piece(6));
    }
    for (int x = 9; x < w - 10; x += 10)
        p.drawImage(x, h - 6, piece(8));
    p.drawImage(0, h - 6, piece(7));
    p.drawImage(w - 10, h - 6, piece(9));
    for (int x = 10; x < w - 10; x += 10)
        p.drawImage(x, 0, piece(2));
    p.drawImage(0, 0, piece(1));
    p.drawImage(w - 10, 0, piece(3));
}

QImage mainFrame() {
    const int w = 760;
    const int h = 300;
    QImage frame(w, h, QImage::Format_ARGB32_Premultiplied);
    frame.fill(QColor(kKeyDialog));
    QPainter p(&frame);
    frameBorder(p, w, h);
    p.drawImage(8, 5, picture("MainFrame/icon_tvn_non_alpha.png"));
    p.drawImage(53, 7, picture("MainFrame/filebro_Tvn.png"));
    text(p, QRect((w - 300) / 2, 0, 300, 44), "sample.iso - Ovrin Viewer", kBodyPixels + 3,
         Qt::AlignCenter);
    const std::pair<const char*, int> captions[] = {
        {"close", 0}, {"max", 1}, {"min", 2}, {"update", 0}};
    int x = w - 10;
    for (const auto& [name, state] : captions) {
        x -= 22;
        p.drawImage(x, 11,
                    statePiece(QStringLiteral("MainFrame/btn_caption_%1.png").arg(name), state));
        x -= 7;
    }
    const QRect client(6, 44, w - 12, h - 50);
    p.fillRect(QRect(client.left(), client.top(), client.width(), 37), QColor(kCommandBar));
    const std::pair<const char*, int> commands[] = {{"btn_open", 1},    {"btn_view", 0},
                                                    {"btn_extract", 2}, {"btn_viewmode", 0},
                                                    {"btn_burn", 0},    {"btn_mount", 0}};
    x = client.left() + 5;
    for (const auto& [name, state] : commands) {
        const QImage piece = statePiece(QStringLiteral("MainFrame/%1.png").arg(name), state);
        p.drawImage(x, client.top() + 7, piece);
        x += piece.width() + 10;
    }
    const QRect panes = client.adjusted(0, 37, 0, 0);
    p.fillRect(panes, QColor(200, 203, 206));
    p.fillRect(QRect(panes.left(), panes.top(), 230, panes.height()), QColor(246, 247, 248));
    p.fillRect(panes.adjusted(232, 0, 0, 0), Qt::white);
    return frame;
}

// The window as it shows: what the key colour marks is cut away.
QImage cutKey(const QImage& image) {
    QImage out = image.convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < out.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(out.scanLine(y));
        for (int x = 0; x < out.width(); ++x) {
            if (line[x] == kKeyDialog)
                line[x] = 0;
        }
    }
    return out;
}

// Lays images out in rows on the ground, each with a caption under it.
QImage montage(const std::vector<std::pair<QString, QImage>>& items, int zoom) {
    const QFontMetrics labels(PaintKit::font(11, false));
    int width = kMinimumWidth;
    for (const auto& item : items)
        width = std::max(width, item.second.width() * zoom + 2 * kMargin);
    std::vector<QPoint> places;
    int x = kMargin;
    int y = kMargin;
    int rowHeight = 0;
    for (const auto& item : items) {
        const QSize size = item.second.size() * zoom;
        if (x + size.width() > width - kMargin) {
            x = kMargin;
            y += rowHeight + kLabelHeight + kMargin;
            rowHeight = 0;
        }
        places.push_back({x, y});
        x += std::max(size.width(), labels.horizontalAdvance(item.first)) + kMargin;
        rowHeight = std::max(rowHeight, size.height());
    }
    QImage sheet(width, y + rowHeight + kLabelHeight + kMargin,
                 QImage::Format_ARGB32_Premultiplied);
    sheet.fill(QColor(kGround));
    QPainter p(&sheet);
    for (std::size_t i = 0; i < items.size(); ++i) {
        const QImage& image = items[i].second;
        p.drawImage(QRect(places[i], image.size() * zoom), image);
        text(p, QRect(places[i].x(), places[i].y() + image.height() * zoom + 1, 600, kLabelHeight),
             items[i].first, 11, Qt::AlignLeft | Qt::AlignTop, qRgb(24, 24, 24));
    }
    return sheet;
}
} // namespace

QImage ContactSheet::pictures() {
    std::vector<std::pair<QString, QImage>> items;
    for (const SkinPicture& picture : SkinCatalog::pictures()) {
        items.emplace_back(QStringLiteral("%1  %2x%3 x%4")
                               .arg(picture.path)
                               .arg(picture.piece.width())
                               .arg(picture.piece.height())
                               .arg(picture.states),
                           picture.paint());
    }
    return montage(items, kZoom);
}

QImage ContactSheet::mockups() {
    const QString shortText = QStringLiteral("The image could not be opened. It may be damaged, or "
                                             "it is not a disc image that Ovrin can read.");
    const QString longText = shortText + QStringLiteral("\n\n") + shortText + ' ' + shortText;
    return montage({{"main window", cutKey(mainFrame())},
                    {"message box", cutKey(messageBox(0, 0, "warning", shortText, {"OK"}))},
                    {"message box, grown",
                     cutKey(messageBox(130, 70, "question", longText, {"Cancel", "No", "Yes"}))},
                    {"progress", cutKey(progressDialog())},
                    {"overwrite question", cutKey(confirmDialog())}},
                   1);
}
