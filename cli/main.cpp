// ovrin-cli: lists and describes disc images through the same reader as the viewer.
#include "CImageReader.h"
#include "COvDataItem.h"
#include "CliFrontEnd.h"
#include "TreePrinter.h"

#include <QFile>
#include <QFileInfo>

#include <cstdio>
#include <cstring>

namespace {

constexpr int kExitOk = 0;
constexpr int kExitFailure = 1;
constexpr int kExitUsage = 2;
constexpr int kExitInterrupted = 130;

constexpr const char* kUsage =
    "Usage: ovrin-cli list IMAGE   list every folder and file of a disc image\n"
    "       ovrin-cli info IMAGE   show the volume name, file system and totals\n";

void PrintError(const QString& text) {
    std::fprintf(stderr, "ovrin-cli: %s\n", text.toUtf8().constData());
}

const char* FileSystemName(uint32_t kind) {
    switch (kind) {
    case qmz::kFsIso9660:
        return "ISO 9660";
    case qmz::kFsJoliet:
        return "ISO 9660 with Joliet";
    case qmz::kFsRockRidge:
        return "ISO 9660 with Rock Ridge";
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

int RunImageCommand(const char* command, const QString& imageArg) {
    // The reader makes the program's folder current, so the path is made absolute first.
    const QString imagePath = QFileInfo(imageArg).absoluteFilePath();
    if (!QFileInfo(imagePath).isFile()) {
        PrintError(QStringLiteral("\"%1\" does not exist or is not a file.").arg(imageArg));
        return kExitFailure;
    }
    CImageReader reader;
    CliFrontEnd frontEnd(reader);
    COvDataItem root(QString(), COvDataItem::KindRoot, 0, 0);
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
    if (std::strcmp(command, "info") == 0) {
        return PrintInfo(reader, root);
    }
    TreePrinter printer(stdout);
    if (!printer.PrintList(root)) {
        PrintError(QStringLiteral("Writing the list failed."));
        return kExitFailure;
    }
    return kExitOk;
}

} // namespace

int main(int argc, char** argv) {
    if (argc == 3 && (std::strcmp(argv[1], "list") == 0 || std::strcmp(argv[1], "info") == 0)) {
        return RunImageCommand(argv[1], QFile::decodeName(argv[2]));
    }
    if (argc == 2 && (std::strcmp(argv[1], "--help") == 0 || std::strcmp(argv[1], "-h") == 0)) {
        std::fputs(kUsage, stdout);
        return kExitOk;
    }
    std::fputs(kUsage, stderr);
    return kExitUsage;
}
