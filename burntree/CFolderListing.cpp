#include "CFolderListing.h"

#include <QFile>

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

namespace {

// Appends the entry of one directory item, or nothing when it cannot go on a disc.
void AddEntry(int folderFd, const char* pName, std::vector<CFolderListing::Entry>& entries) {
    struct stat linkStat {};
    struct stat targetStat {};
    if (fstatat(folderFd, pName, &linkStat, AT_SYMLINK_NOFOLLOW) != 0 ||
        fstatat(folderFd, pName, &targetStat, 0) != 0) {
        return;
    }
    const bool bFolder = S_ISDIR(targetStat.st_mode);
    if ((bFolder && S_ISLNK(linkStat.st_mode)) || (!bFolder && !S_ISREG(targetStat.st_mode))) {
        return;
    }
    CFolderListing::Entry entry;
    entry.name = QFile::decodeName(pName);
    entry.bFolder = bFolder;
    entry.ullSize = bFolder ? 0 : static_cast<uint64_t>(targetStat.st_size);
    entries.push_back(entry);
}

bool IsDotOrDotDot(const char* pName) {
    return pName[0] == '.' && (pName[1] == '\0' || (pName[1] == '.' && pName[2] == '\0'));
}

bool ByNameWithoutCase(const CFolderListing::Entry& a, const CFolderListing::Entry& b) {
    const int nOrder = a.name.compare(b.name, Qt::CaseInsensitive);
    return nOrder != 0 ? nOrder < 0 : a.name < b.name;
}

} // namespace

qmz::Result CFolderListing::Read(const QString& folderPath) {
    m_vecEntries.clear();
    DIR* pDir = opendir(QFile::encodeName(folderPath).constData());
    if (pDir == nullptr) {
        return qmz::kEngineFindFailed;
    }
    errno = 0;
    while (const dirent* pItem = readdir(pDir)) {
        if (!IsDotOrDotDot(pItem->d_name)) {
            AddEntry(dirfd(pDir), pItem->d_name, m_vecEntries);
        }
        errno = 0;
    }
    const bool bBrokeOff = errno != 0;
    closedir(pDir);
    if (bBrokeOff) {
        return qmz::kEngineFindFailed;
    }
    std::sort(m_vecEntries.begin(), m_vecEntries.end(), ByNameWithoutCase);
    return qmz::kOk;
}

const CFolderListing::Entry* CFolderListing::FindFile(const QString& name) const {
    for (const Entry& entry : m_vecEntries) {
        if (!entry.bFolder && entry.name.compare(name, Qt::CaseInsensitive) == 0) {
            return &entry;
        }
    }
    return nullptr;
}
