#include "SkinImages.h"

#include "DevicePixels.h"
#include "Locations.h"

#include <QColorSpace>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QImageWriter>
#include <QPainter>
#include <QWidget>

namespace {

constexpr int kJpegQuality = 90;
constexpr int kStatePieces = 4;

QString g_installFolder;

struct ImageFormat {
    const char* szExtension;
    const char* szFormat;
};

constexpr ImageFormat kSaveFormats[] = {
    {"jpg", "jpeg"}, {"bmp", "bmp"}, {"png", "png"}, {"tif", "tiff"}};

const char* SaveFormatOf(const QString& extension) {
    for (const auto& format : kSaveFormats) {
        // Byte for byte: "JPG" is not one of them.
        if (extension == QLatin1StringView(format.szExtension)) {
            return format.szFormat;
        }
    }
    return nullptr;
}

} // namespace

void SetInstallFolder(const QString& folder) {
    g_installFolder = folder;
}

QString InstallFolder() {
    return g_installFolder.isEmpty() ? ProgramFolder() : g_installFolder;
}

QString InstallPath(const QString& relativePath) {
    QString local = relativePath;
    local.replace(u'\\', u'/');
    return InstallFolder() + u'/' + local;
}

QImage LoadImageFile(const QString& path, bool bUseColourManagement) {
    QImageReader reader(path);
    QImage image = reader.read();
    if (image.isNull()) {
        return image;
    }
    if (bUseColourManagement && image.colorSpace().isValid() &&
        image.colorSpace() != QColorSpace(QColorSpace::SRgb)) {
        image.convertToColorSpace(QColorSpace(QColorSpace::SRgb));
    }
    return image.convertToFormat(QImage::Format_ARGB32);
}

QImage LoadInstallImage(const QString& relativePath, bool bUseColourManagement) {
    return LoadImageFile(InstallPath(relativePath), bUseColourManagement);
}

QImage FlattenImage(const QImage& image, QRgb background) {
    if (image.isNull()) {
        return image;
    }
    if ((background & RGB_MASK) == 0) {
        return image.convertToFormat(QImage::Format_ARGB32);
    }
    QImage flat(image.size(), QImage::Format_ARGB32);
    flat.fill(QColor::fromRgba(background | 0xFF000000u));
    QPainter painter(&flat);
    painter.drawImage(0, 0, image);
    return flat;
}

void PremultiplyPixels(QImage& image) {
    for (int y = 0; y < image.height(); ++y) {
        auto* pRow = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = pRow[x];
            const int nAlpha = qAlpha(pixel);
            pRow[x] = qRgba(qRed(pixel) * nAlpha / 255, qGreen(pixel) * nAlpha / 255,
                            qBlue(pixel) * nAlpha / 255, nAlpha);
        }
    }
}

bool LoadPremultipliedBitmap(const QString& relativePath, bool bPremultiply, QImage& out) {
    if (relativePath.isNull()) {
        return false;
    }
    QImage bitmap = FlattenImage(LoadInstallImage(relativePath, false), kFlattenKeepAlpha);
    if (bitmap.isNull()) {
        return false;
    }
    if (bPremultiply && relativePath.contains(QLatin1StringView(".png"), Qt::CaseSensitive)) {
        PremultiplyPixels(bitmap);
        bitmap.reinterpretAsFormat(QImage::Format_ARGB32_Premultiplied);
    }
    out = bitmap;
    return true;
}

void SplitStateStrip(const QImage& strip, int nPieceWidth, int nPieceHeight, QImage* pNormal,
                     QImage* pHover, QImage* pPressed, QImage* pDisabled) {
    QImage* const pieces[kStatePieces] = {pNormal, pHover, pPressed, pDisabled};
    for (int i = 0; i < kStatePieces; ++i) {
        if (pieces[i] != nullptr) {
            *pieces[i] = strip.copy(nPieceWidth * i, 0, nPieceWidth, nPieceHeight);
        }
    }
}

void DrawColourKeyed(COLORREF key, QPainter& dest, int x, int y, int nWidth, int nHeight,
                     const QImage& bitmap) {
    QImage work = bitmap.copy(0, 0, nWidth, nHeight).convertToFormat(QImage::Format_ARGB32);
    for (int row = 0; row < work.height(); ++row) {
        auto* pRow = reinterpret_cast<QRgb*>(work.scanLine(row));
        for (int col = 0; col < work.width(); ++col) {
            pRow[col] = RefFromRgb(pRow[col]) == key ? 0u : (pRow[col] | 0xFF000000u);
        }
    }
    dest.drawImage(x, y, work);
}

QImage CaptureParentBackground(const QWidget* pControl, const QImage& backdrop) {
    const qreal dpr = DevicePixelRatioOf(pControl);
    const QPoint origin = ToDevice(pControl->pos(), dpr);
    QImage piece = backdrop.copy(QRect(origin, DeviceSize(pControl)));
    return piece.convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

bool SaveImageAs(const QImage& image, const QString& path, const QString& extension) {
    const char* szFormat = SaveFormatOf(extension);
    if (szFormat == nullptr || image.isNull()) {
        return false;
    }
    QImageWriter writer(path, szFormat);
    if (qstrcmp(szFormat, "jpeg") == 0) {
        writer.setQuality(kJpegQuality);
    }
    return writer.write(image);
}

bool SaveThumbnailAs(const QImage& image, int nWidth, int nHeight, const QString& path,
                     const QString& extension) {
    if (image.isNull() || nWidth <= 0 || nHeight <= 0) {
        return false;
    }
    const double ratio = static_cast<double>(image.width()) / image.height();
    int nTargetWidth = nWidth;
    int nTargetHeight = nHeight;
    if (nHeight < nWidth) {
        nTargetHeight = static_cast<int>(nWidth / ratio);
    } else {
        nTargetWidth = static_cast<int>(nHeight * ratio);
    }
    QImage thumbnail(qMax(nTargetWidth, 1), qMax(nTargetHeight, 1), image.format());
    thumbnail.fill(Qt::transparent);
    QPainter painter(&thumbnail);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(thumbnail.rect(), image);
    painter.end();
    return SaveImageAs(thumbnail, path, extension);
}
