// The one table of icons that the tree and the list share: an entry's icon number is its
// index here. The core keeps names only (a theme name and its generic fallback); the user
// interface turns them into pictures.
#pragma once

#include <QString>
#include <vector>

class CIconTable {
public:
    struct IconName {
        QString strName;        // the theme name, e.g. "text-plain"
        QString strGenericName; // the theme name to try next, e.g. "text-x-generic"
    };

    // The index of the pair, added at the end on first sight.
    int IndexOf(const QString& name, const QString& genericName);
    const IconName& At(int nIndex) const { return m_vecNames[static_cast<size_t>(nIndex)]; }
    int Count() const { return static_cast<int>(m_vecNames.size()); }

    static CIconTable& Instance();

private:
    // Index 0 is what an entry without an answer shows: the style's plain file icon.
    std::vector<IconName> m_vecNames{IconName{}};
};
