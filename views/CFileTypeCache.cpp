#include "CFileTypeCache.h"

#include <QMimeType>

namespace {

using namespace Qt::StringLiterals;

// Each such file may carry an icon of its own, so their answers are never shared.
const QString kUncachedExtensions[] = {u".EXE"_s, u".ICO"_s, u".LNK"_s};

QStringView FileNameOf(const QString& path) {
    qsizetype nStart = path.size();
    while (nStart > 0 && path[nStart - 1] != u'\\' && path[nStart - 1] != u'/') {
        --nStart;
    }
    return QStringView(path).mid(nStart);
}

// From the last dot of the name on, dot included; empty without a dot. Scans from the end,
// as an extension is short and a path is not.
QStringView ExtensionOf(const QString& path) {
    for (qsizetype i = path.size(); i > 0; --i) {
        const QChar c = path[i - 1];
        if (c == u'.') {
            return QStringView(path).mid(i - 1);
        }
        if (c == u'\\' || c == u'/') {
            break;
        }
    }
    return QStringView();
}

QChar Upper(QChar c) {
    if (c.unicode() < 0x80) {
        return (c >= u'a' && c <= u'z') ? QChar(c.unicode() - 0x20) : c;
    }
    return c.toUpper();
}

// Compares without making the upper-case copy: this runs once per file of an image.
bool EqualsUpper(QStringView text, const QString& upper) {
    if (text.size() != upper.size()) {
        return false;
    }
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (Upper(text[i]) != upper[i]) {
            return false;
        }
    }
    return true;
}

QString UpperOf(QStringView text) {
    QString out(text.size(), Qt::Uninitialized);
    for (qsizetype i = 0; i < text.size(); ++i) {
        out[i] = Upper(text[i]);
    }
    return out;
}

bool IsUncached(QStringView extension) {
    for (const QString& uncached : kUncachedExtensions) {
        if (EqualsUpper(extension, uncached)) {
            return true;
        }
    }
    return false;
}

} // namespace

const CFileTypeCache::Entry* CFileTypeCache::Find(QStringView extension) {
    // Files of one type tend to come together, written alike: the last hit as it was written
    // is tried first, without case folding.
    if (m_nLastHit < m_vecEntries.size() && extension == m_strLastHitAsWritten) {
        return &m_vecEntries[m_nLastHit];
    }
    for (size_t i = 0; i < m_vecEntries.size(); ++i) {
        if (EqualsUpper(extension, m_vecEntries[i].strExtension)) {
            m_nLastHit = i;
            m_strLastHitAsWritten = extension.toString();
            return &m_vecEntries[i];
        }
    }
    return nullptr;
}

int CFileTypeCache::GetFileType(const QString& path, bool bIsFolder, FileTypeRecord* pRecord) {
    if (pRecord == nullptr) {
        return 0;
    }
    if (bIsFolder) {
        // One answer stands for all folders, but it is asked each time, as it is cheap.
        AskForFolder(*pRecord);
        return 1;
    }
    const QStringView extension = ExtensionOf(path);
    // The extensions that are never kept are never found either.
    if (const Entry* pEntry = Find(extension)) {
        *pRecord = pEntry->record;
        return 1;
    }
    const bool bStore = !IsUncached(extension);
    if (!AskForFile(FileNameOf(path), *pRecord)) {
        return 0;
    }
    if (bStore) {
        m_vecEntries.push_back(Entry{UpperOf(extension), *pRecord});
    }
    return 1;
}

void CFileTypeCache::AskForFolder(FileTypeRecord& record) {
    ++m_nQuestions;
    const QMimeType folder = m_mimeDatabase.mimeTypeForName(u"inode/directory"_s);
    // The database makes a fresh translated comment on every call, which costs more than the
    // question; the last one serves as long as the answer is the same type.
    if (!folder.isValid()) {
        m_strFolderTypeName = u"folder"_s;
    } else if (folder != m_lastFolderType) {
        m_strFolderTypeName = folder.comment();
    }
    m_lastFolderType = folder;
    record.strTypeName = m_strFolderTypeName;
    record.nIcon = m_icons.IndexOf(u"folder"_s, QString());
    record.nOpenIcon = m_icons.IndexOf(u"folder-open"_s, u"folder"_s);
}

bool CFileTypeCache::AskForFile(QStringView fileName, FileTypeRecord& record) {
    ++m_nQuestions;
    const QMimeType type =
        m_mimeDatabase.mimeTypeForFile(fileName.toString(), QMimeDatabase::MatchExtension);
    if (!type.isValid()) {
        return false;
    }
    record.strTypeName = type.comment();
    record.nIcon = m_icons.IndexOf(type.iconName(), type.genericIconName());
    record.nOpenIcon = record.nIcon;
    return true;
}

CFileTypeCache& CFileTypeCache::Instance() {
    static CFileTypeCache cache(CIconTable::Instance());
    return cache;
}

bool CFileTypeCache::LookupForDataItem(const QString& path, bool bIsFolder,
                                       FileTypeRecord& record) {
    return Instance().GetFileType(path, bIsFolder, &record) != 0;
}

void CFileTypeCache::InstallForDataItems() {
    COvDataItem::SetFileTypeLookup(LookupForDataItem);
}
