// The type text and icon of every entry of an image, asked of the MIME database by name
// alone, since the entries are not on the disk. One answer is kept per extension, so that an
// image of many thousand files costs one question per extension.
#pragma once

#include "CIconTable.h"
#include "COvDataItem.h"

#include <QMimeDatabase>
#include <QMimeType>
#include <QString>
#include <QStringView>
#include <vector>

class CFileTypeCache {
public:
    explicit CFileTypeCache(CIconTable& icons) : m_icons(icons) {}

    // Fills pRecord for the entry at path (inside the image, '\' or '/' between names).
    // Returns 1 if it was filled, 0 without a record or an answer.
    int GetFileType(const QString& path, bool bIsFolder, FileTypeRecord* pRecord);
    // How often the database was asked; the cache's whole point.
    int QuestionCount() const { return m_nQuestions; }

    // The process's instance, over the process's icon table.
    static CFileTypeCache& Instance();
    // Makes every new COvDataItem ask the process's instance.
    static void InstallForDataItems();

private:
    struct Entry {
        QString strExtension; // upper case, with its dot; empty for a name without one
        FileTypeRecord record;
    };

    static bool LookupForDataItem(const QString& path, bool bIsFolder, FileTypeRecord& record);
    const Entry* Find(QStringView extension);
    void AskForFolder(FileTypeRecord& record);
    bool AskForFile(QStringView fileName, FileTypeRecord& record);

    CIconTable& m_icons;
    QMimeDatabase m_mimeDatabase;
    std::vector<Entry> m_vecEntries;
    QMimeType m_lastFolderType;
    QString m_strFolderTypeName;
    size_t m_nLastHit = 0;
    QString m_strLastHitAsWritten;
    int m_nQuestions = 0;
};
