#include "CTvnStringTable.h"

#include <QFile>
#include <QStringList>

namespace {

bool Unescape(QStringView text, QString& out) {
    out.clear();
    out.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] != u'\\') {
            out += text[i];
            continue;
        }
        if (++i == text.size()) {
            return false;
        }
        switch (text[i].unicode()) {
        case u'n':
            out += u'\n';
            break;
        case u't':
            out += u'\t';
            break;
        case u'\\':
            out += u'\\';
            break;
        default:
            return false;
        }
    }
    return true;
}

bool ParseLine(QStringView line, QHash<uint32_t, QString>& texts) {
    const qsizetype nTab = line.indexOf(u'\t');
    if (nTab <= 0) {
        return false;
    }
    bool bNumber = false;
    const uint32_t id = line.left(nTab).toUInt(&bNumber);
    QString text;
    // A number twice is a slip in the file, and the second text would silently win.
    if (!bNumber || texts.contains(id) || !Unescape(line.mid(nTab + 1), text)) {
        return false;
    }
    texts.insert(id, text);
    return true;
}

} // namespace

bool CTvnStringTable::LoadFile(const QString& path, int* pBadLine) {
    m_texts.clear();
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        if (pBadLine != nullptr) {
            *pBadLine = 0;
        }
        return false;
    }
    const QString content = QString::fromUtf8(file.readAll());
    const QStringList lines = content.split(u'\n');
    QHash<uint32_t, QString> texts;
    for (qsizetype i = 0; i < lines.size(); ++i) {
        QStringView line(lines[i]);
        if (line.endsWith(u'\r')) {
            line.chop(1);
        }
        if (line.isEmpty() || line.startsWith(u'#')) {
            continue;
        }
        if (!ParseLine(line, texts)) {
            if (pBadLine != nullptr) {
                *pBadLine = static_cast<int>(i + 1);
            }
            return false;
        }
    }
    m_texts.swap(texts);
    return true;
}
