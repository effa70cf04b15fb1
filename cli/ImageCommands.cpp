// ovrin-cli list and info: the tree of an image as the viewer's reader builds it.
#include "CFileTypeCache.h"
#include "CImageReader.h"
#include "COvDataItem.h"
#include "CliCommands.h"
#include "CliFrontEnd.h"
#include "TreePrinter.h"

#include <QFileInfo>

#include <cstdio>
#include <vector>

namespace cli {
namespace {

const char* FileSystemName(uint32_t kind) {
    switch (kind) {
    case qmz::kFsIso9660:
        return "ISO 9660";
    case qmz::kFsJoliet:
        return "ISO 9660 with Joliet";
    case qmz::kFsRockRidge:
        return "ISO 9660 with Rock Ridge";
    case qmz::kFsIso9660_1999:
        return "ISO 9660:1999";
    case qmz::kFsUdf:
        return "UDF";
    case qmz::kFsUdfBridge:
        return "UDF, shown; ISO 9660 also present";
    default:
        return "unknown";
    }
}

void CountTree(const COvDataItem& root, uint64_t& nFolders, uint64_t& nFiles) {
    std::vector<const COvDataItem*> pending{&root};
    while (!pending.empty()) {
        const COvDataItem* pItem = pending.back();
        pending.pop_back();
        nFolders += static_cast<uint64_t>(pItem->m_nFolders);
        nFiles += static_cast<uint64_t>(pItem->m_nFiles);
        pending.insert(pending.end(), pItem->m_vecChildren.begin(), pItem->m_vecChildren.end());
    }
}

int PrintInfo(const CImageReader& reader, const COvDataItem& root) {
    uint64_t nFolders = 0;
    uint64_t nFiles = 0;
    CountTree(root, nFolders, nFiles);
    std::printf("Volume:       %s\n", root.m_strName.toUtf8().constData());
    std::printf("File system:  %s\n", FileSystemName(reader.GetFileSystemKind()));
    std::printf("Folders:      %llu\n", static_cast<unsigned long long>(nFolders));
    std::printf("Files:        %llu\n", static_cast<unsigned long long>(nFiles));
    std::printf("Total bytes:  %llu\n", static_cast<unsigned long long>(root.m_ullSize));
    return std::fflush(stdout) == 0 ? kExitOk : kExitFailure;
}

} // namespace

// Opens the image into root; an exit code when that failed, else -1. The path must be made
// absolute before the reader exists, because the reader makes the program's folder current.
int OpenInto(CImageReader& reader, const QString& imageArg, const QString& imagePath,
             COvDataItem& root) {
    if (!QFileInfo(imagePath).isFile()) {
        PrintError(QStringLiteral("\"%1\" does not exist or is not a file.").arg(imageArg));
        return kExitFailure;
    }
    CliFrontEnd frontEnd(reader);
    const qmz::Result hr = reader.OpenImage(imagePath, &root);
    frontEnd.EndProgress();
    if (hr == qmz::kStopped) {
        PrintError(QStringLiteral("Stopped."));
        return kExitInterrupted;
    }
    if (hr < 0) {
        PrintError(CliFrontEnd::DescribeOpenFailure(hr, imageArg, reader.HasEngine()));
        return kExitFailure;
    }
    return -1;
}

int RunList(const QStringList& args) {
    QStringList rest = args;
    const bool bLong = rest.removeAll(QStringLiteral("--long")) > 0;
    if (rest.size() != 1) {
        return kExitUsage;
    }
    const QString imagePath = QFileInfo(rest[0]).absoluteFilePath();
    // The type service costs a little on every entry, so only the long list pays for it.
    if (bLong) {
        CFileTypeCache::InstallForDataItems();
    }
    CImageReader reader;
    COvDataItem root(QString(), COvDataItem::KindRoot, 0, 0);
    if (const int exitCode = OpenInto(reader, rest[0], imagePath, root); exitCode >= 0) {
        return exitCode;
    }
    TreePrinter printer(stdout, bLong);
    if (!printer.PrintList(root)) {
        PrintError(QStringLiteral("Writing the list failed."));
        return kExitFailure;
    }
    return kExitOk;
}

int RunInfo(const QStringList& args) {
    if (args.size() != 1) {
        return kExitUsage;
    }
    const QString imagePath = QFileInfo(args[0]).absoluteFilePath();
    CImageReader reader;
    COvDataItem root(QString(), COvDataItem::KindRoot, 0, 0);
    if (const int exitCode = OpenInto(reader, args[0], imagePath, root); exitCode >= 0) {
        return exitCode;
    }
    return PrintInfo(reader, root);
}

} // namespace cli
