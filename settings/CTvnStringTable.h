// The numbered texts of one language, loaded whole from its Tvnrc.txt.
#pragma once

#include <QHash>
#include <QString>
#include <cstdint>

class CTvnStringTable {
public:
    // Replaces the table with the file's texts. False, with the table empty, if the file
    // cannot be read or a line is not "number<TAB>text"; pBadLine then gets the line's number
    // (0 when the file could not be read).
    bool LoadFile(const QString& path, int* pBadLine = nullptr);
    bool Contains(uint32_t id) const { return m_texts.contains(id); }
    // The null string for an id that has no text.
    QString Text(uint32_t id) const { return m_texts.value(id); }
    qsizetype Count() const { return m_texts.size(); }

private:
    QHash<uint32_t, QString> m_texts;
};
