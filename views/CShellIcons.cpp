#include "CShellIcons.h"

#include "CIconTable.h"
#include "ToolkitHooks.h"

#include <QApplication>
#include <QStandardPaths>
#include <QStyle>

namespace {

using namespace Qt::StringLiterals;

QIcon StyleIcon(QStyle::StandardPixmap pixmap) {
    return QApplication::style()->standardIcon(pixmap);
}

} // namespace

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
    ChooseIconTheme();
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
        ChooseIconTheme();
        const QIcon drive = QIcon::fromTheme(
            u"drive-optical"_s,
            QIcon::fromTheme(u"media-optical"_s, StyleIcon(QStyle::SP_DriveCDIcon)));
        m_rootIcon = QIcon::fromTheme(u"ovrin"_s, drive);
    }
    return m_rootIcon;
}
