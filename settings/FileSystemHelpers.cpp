#include "FileSystemHelpers.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>

namespace {

constexpr QDir::Filters kEveryEntry =
    QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;

NoticeHandler g_pfnNotice = nullptr;

bool RemoveEntry(const QFileInfo& entry) {
    if (entry.isDir() && !entry.isSymLink()) {
        return QDir(entry.filePath()).removeRecursively();
    }
    return QFile::remove(entry.filePath());
}

void Notify(const QString& text) {
    if (g_pfnNotice != nullptr) {
        g_pfnNotice(text);
    }
}

} // namespace

void SetNoticeHandler(NoticeHandler pfnHandler) {
    g_pfnNotice = pfnHandler;
}

bool EmptyFolder(const QString& path, bool bRemove) {
    if (path.isEmpty() || !QFileInfo(path).isDir()) {
        return false;
    }
    // A failed entry does not stop the others.
    for (const QFileInfo& entry : QDir(path).entryInfoList(kEveryEntry)) {
        QString ignored;
        if (!QFile::moveToTrash(entry.filePath(), &ignored) && !RemoveEntry(entry)) {
            Notify(QString::fromUtf16(kEntryNotRemovedNotice));
        }
    }
    if (!bRemove) {
        return true;
    }
    if (!QDir().rmdir(path)) {
        return false;
    }
    return FolderHasNoEntries(path);
}

bool FolderHasNoEntries(const QString& path) {
    if (!QFileInfo(path).isDir()) {
        return false;
    }
    QDirIterator entries(path, kEveryEntry);
    return !entries.hasNext();
}

bool CanWriteToFolder(const QString& path) {
    return CanCreateFileIn(path.endsWith(u'/') ? path : QFileInfo(path).path());
}

bool CanCreateFileIn(const QString& folder) {
    QTemporaryFile file(QDir(folder).filePath(QStringLiteral("tvnXXXXXX")));
    return file.open();
}

void PumpMessages() {
    if (QCoreApplication::instance() != nullptr) {
        QCoreApplication::processEvents();
    }
}

void PumpMessageType(uint32_t message) {
    // Repaints are the one kind the program asks for on its own.
    if (message == kMessagePaint && QCoreApplication::instance() != nullptr) {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::UpdateRequest);
    }
}
