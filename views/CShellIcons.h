// Pictures for the shared icon table's numbers, from the desktop icon theme. A desktop without
// a session names no theme, so a fallback theme that the program installs stands in.
#pragma once

#include <QIcon>
#include <vector>

class CIconTable;

class CShellIcons {
public:
    explicit CShellIcons(const CIconTable& table) : m_table(table) {}

    // The icon of a table index; index 0 and unknown indexes give the style's file icon.
    QIcon Icon(int nIndex);
    // The volume at the root of the tree: the program's own icon, else an optical drive.
    QIcon RootIcon();

    static CShellIcons& Instance();

private:
    QIcon Load(int nIndex) const;

    const CIconTable& m_table;
    std::vector<QIcon> m_vecIcons;
    QIcon m_rootIcon;
};
