#include "CIconTable.h"

int CIconTable::IndexOf(const QString& name, const QString& genericName) {
    // A handful of types occur on a disc; a linear search is shorter than a hash's upkeep.
    for (size_t i = 0; i < m_vecNames.size(); ++i) {
        if (m_vecNames[i].strName == name && m_vecNames[i].strGenericName == genericName) {
            return static_cast<int>(i);
        }
    }
    m_vecNames.push_back(IconName{name, genericName});
    return static_cast<int>(m_vecNames.size() - 1);
}

CIconTable& CIconTable::Instance() {
    static CIconTable table;
    return table;
}
