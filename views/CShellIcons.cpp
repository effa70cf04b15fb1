#include "CShellIcons.h"

#include "CIconTable.h"

#include <QApplication>
#include <QStandardPaths>
#include <QStyle>

namespace {

using namespace Qt::StringLiterals;

// A theme of full-colour icons that Debian ships; the install step installs it.
const QString kFallbackTheme = u"Adwaita"_s;
// The freedesktop base theme "hicolor", which every icon theme inherits; it holds programs' own
// icons, hardly any of types and folders.
const QString kBaseTheme = u"hicolor"_s;

QIcon StyleIcon(QStyle::StandardPixmap pixmap) {
    return QApplication::style()->standardIcon(pixmap);
}

} // namespace

void CShellIcons::EnsureFallbackTheme() {
    static bool s_bDone = false;
    if (s_bDone) {
        return;
    }
    s_bDone = true;
    // Without a desktop session Qt names the base theme as the fallback, or no theme at all
    // and no system folder to look in; either way no folder icon would be found.
    if (QIcon::fallbackThemeName().isEmpty() || QIcon::fallbackThemeName() == kBaseTheme) {
        QIcon::setFallbackThemeName(kFallbackTheme);
    }
    if (QIcon::themeName().isEmpty()) {
        QIcon::setThemeName(kBaseTheme);
    }
    QStringList paths = QIcon::themeSearchPaths();
    const QStringList dataFolders = QStandardPaths::locateAll(
        QStandardPaths::GenericDataLocation, u"icons"_s, QStandardPaths::LocateDirectory);
    bool bAdded = false;
    for (const QString& folder : dataFolders) {
        if (!paths.contains(folder)) {
            paths.append(folder);
            bAdded = true;
        }
    }
    if (bAdded) {
        QIcon::setThemeSearchPaths(paths);
    }
}

CShellIcons& CShellIcons::Instance() {
    static CShellIcons icons(CIconTable::Instance());
    return icons;
}

QIcon CShellIcons::Icon(int nIndex) {
    if (nIndex < 0 || nIndex >= m_table.Count()) {
        nIndex = 0;
    }
    // The table only grows, and its entries never change, so a made icon stays valid.
    const size_t nSlot = static_cast<size_t>(nIndex);
    if (nSlot >= m_vecIcons.size()) {
        m_vecIcons.resize(static_cast<size_t>(m_table.Count()));
    }
    if (m_vecIcons[nSlot].isNull()) {
        m_vecIcons[nSlot] = Load(nIndex);
    }
    return m_vecIcons[nSlot];
}

QIcon CShellIcons::Load(int nIndex) const {
    EnsureFallbackTheme();
    const QIcon fileIcon = StyleIcon(QStyle::SP_FileIcon);
    const CIconTable::IconName& name = m_table.At(nIndex);
    if (name.strName.isEmpty()) {
        return fileIcon;
    }
    const QIcon generic =
        name.strGenericName.isEmpty() ? fileIcon : QIcon::fromTheme(name.strGenericName, fileIcon);
    return QIcon::fromTheme(name.strName, generic);
}

QIcon CShellIcons::RootIcon() {
    if (m_rootIcon.isNull()) {
        EnsureFallbackTheme();
        const QIcon drive = QIcon::fromTheme(
            u"drive-optical"_s,
            QIcon::fromTheme(u"media-optical"_s, StyleIcon(QStyle::SP_DriveCDIcon)));
        m_rootIcon = QIcon::fromTheme(u"ovrin"_s, drive);
    }
    return m_rootIcon;
}
