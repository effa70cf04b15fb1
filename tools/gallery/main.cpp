// ovrin-gallery: every dialog of the skinned toolkit with sample content.
//   ovrin-gallery                     a list of the scenes; double-click one to see it
//   ovrin-gallery SCENE...            those scenes, one after the other
//   ovrin-gallery --shot DIR [SCENE...]  a PNG of each scene in DIR, then exit
//   --scale 1.5                       as on a screen of 144 dpi with EnableDPIAware set
// It runs from the build folder or the installed program's, beside Image/ and Language/.

#include "CTvnStringTable.h"
#include "GalleryScenes.h"
#include "Locations.h"
#include "RegTypes.h"
#include "ScalarReg.h"
#include "ToolkitHooks.h"
#include "TvnText.h"

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QEventLoop>
#include <QListWidget>
#include <QPainter>
#include <QTemporaryDir>
#include <QTextStream>
#include <memory>

namespace {

struct Options {
    QString strShotDir;
    QString strScale;
    QStringList scenes;
    bool bValid = true;
};

Options ParseOptions(int argc, char** argv) {
    Options options;
    for (int i = 1; i < argc; ++i) {
        const QString arg = QString::fromLocal8Bit(argv[i]);
        if ((arg == u"--shot" || arg == u"--scale") && i + 1 < argc) {
            (arg == u"--shot" ? options.strShotDir : options.strScale) =
                QString::fromLocal8Bit(argv[++i]);
        } else if (arg.startsWith(u"--")) {
            options.bValid = false;
        } else {
            options.scenes << arg;
        }
    }
    return options;
}

// A scale of 1.5 needs Qt's scale factor and the machine-wide EnableDPIAware; the latter goes
// into a store of the gallery's own, so the machine's settings stay as they are.
void PrepareScale(const QString& scale, const QTemporaryDir& store) {
    qputenv("QT_SCALE_FACTOR", scale.toLocal8Bit());
    qputenv("BRINDLEWAY_MACHINE_REGISTRY",
            store.filePath(QStringLiteral("machine.db")).toLocal8Bit());
    qputenv("BRINDLEWAY_USER_REGISTRY", store.filePath(QStringLiteral("user.db")).toLocal8Bit());
}

void EnableDpiAwareness() {
    DwordReg(RegRoot::LocalMachine, QString::fromUtf16(kSettingsKey),
             QStringLiteral("EnableDPIAware"), true) = 1;
}

bool LoadEnglishTexts(CTvnStringTable& table) {
    const QString path = QDir(ProgramFolder()).filePath(QStringLiteral("Language/Enu/Tvnrc.txt"));
    if (!table.LoadFile(path)) {
        QTextStream(stderr) << "ovrin-gallery: cannot read " << path << "\n";
        return false;
    }
    SetCurrentStringTable(&table);
    return true;
}

std::vector<const GalleryScene*> ChosenScenes(const QStringList& names) {
    std::vector<const GalleryScene*> chosen;
    for (const GalleryScene& scene : GalleryScenes()) {
        if (names.isEmpty() || names.contains(scene.strName)) {
            chosen.push_back(&scene);
        }
    }
    return chosen;
}

// Shows the scene until its window closes; a dialog runs modally, as the program runs it.
void ShowScene(const GalleryScene& scene) {
    std::unique_ptr<QWidget> pWidget(scene.make());
    if (auto* pDialog = qobject_cast<QDialog*>(pWidget.get())) {
        pDialog->exec();
        return;
    }
    pWidget->setAttribute(Qt::WA_QuitOnClose, false);
    pWidget->show();
    QEventLoop loop;
    QObject::connect(pWidget.get(), &QObject::destroyed, &loop, &QEventLoop::quit);
    pWidget->setAttribute(Qt::WA_DeleteOnClose);
    pWidget.release();
    loop.exec();
}

// What a person sees: the window's pixels inside its shape, transparent outside it.
QImage Shot(QWidget& widget) {
    QImage image = widget.grab().toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
    if (!widget.mask().isEmpty()) {
        QPainter painter(&image);
        painter.setCompositionMode(QPainter::CompositionMode_Clear);
        painter.setClipRegion(QRegion(widget.rect()).subtracted(widget.mask()));
        painter.fillRect(widget.rect(), Qt::transparent);
    }
    return image;
}

int WriteShots(const QString& folder, const std::vector<const GalleryScene*>& scenes) {
    QDir().mkpath(folder);
    int nFailed = 0;
    for (const GalleryScene* pScene : scenes) {
        std::unique_ptr<QWidget> pWidget(pScene->make());
        pWidget->show();
        QCoreApplication::processEvents();
        const QString path = QDir(folder).filePath(pScene->strName + QStringLiteral(".png"));
        if (!Shot(*pWidget).save(path)) {
            QTextStream(stderr) << "ovrin-gallery: cannot write " << path << "\n";
            ++nFailed;
        }
    }
    return nFailed == 0 ? 0 : 1;
}

int RunLauncher() {
    QListWidget list;
    list.setWindowTitle(QStringLiteral("Ovrin gallery: double-click a scene"));
    for (const GalleryScene& scene : GalleryScenes()) {
        list.addItem(scene.strName + QStringLiteral("  \u2014  ") + scene.strDescription);
    }
    QObject::connect(&list, &QListWidget::itemActivated, [&list](QListWidgetItem* pItem) {
        ShowScene(GalleryScenes()[static_cast<size_t>(list.row(pItem))]);
    });
    list.resize(640, 420);
    list.show();
    return QApplication::exec();
}

} // namespace

int main(int argc, char** argv) {
    const Options options = ParseOptions(argc, argv);
    if (!options.bValid) {
        QTextStream(stderr) << "usage: ovrin-gallery [--scale 1.5] [--shot DIR] [SCENE...]\n";
        return 2;
    }
    QTemporaryDir store;
    if (!options.strScale.isEmpty()) {
        PrepareScale(options.strScale, store);
    }
    QApplication app(argc, argv);
    if (!options.strScale.isEmpty()) {
        EnableDpiAwareness();
    }
    InstallToolkitHooks();
    CTvnStringTable texts;
    if (!LoadEnglishTexts(texts)) {
        return 1;
    }
    const std::vector<const GalleryScene*> scenes = ChosenScenes(options.scenes);
    if (!options.strShotDir.isEmpty()) {
        return WriteShots(options.strShotDir, scenes);
    }
    if (!options.scenes.isEmpty()) {
        for (const GalleryScene* pScene : scenes) {
            ShowScene(*pScene);
        }
        return 0;
    }
    return RunLauncher();
}
