// ovrin-cli extract and cat: files and folders copied out of an image with the viewer's own
// extraction, and one file streamed to standard output.
#include "CImageReader.h"
#include "COvDataItem.h"
#include "CliCommands.h"
#include "CliFrontEnd.h"
#include "FileSystemHelpers.h"
#include "MountTable.h"

#include <QDir>
#include <QFileInfo>

#include <cstdio>
#include <vector>

namespace cli {
namespace {

enum class Existing { Refuse, Overwrite, Skip };

struct ExtractOptions {
    QString imageArg;
    QStringList paths;
    QString targetArg = QStringLiteral(".");
    Existing existing = Existing::Refuse;
};

bool ParseExtractArgs(const QStringList& args, ExtractOptions& options) {
    QStringList positional;
    for (qsizetype i = 0; i < args.size(); ++i) {
        const QString& arg = args[i];
        if (arg == u"-C" && i + 1 < args.size()) {
            options.targetArg = args[++i];
        } else if (arg == u"--overwrite" && options.existing != Existing::Skip) {
            options.existing = Existing::Overwrite;
        } else if (arg == u"--skip-existing" && options.existing != Existing::Overwrite) {
            options.existing = Existing::Skip;
        } else if (arg.startsWith(u'-') && arg != u"-") {
            return false;
        } else {
            positional << arg;
        }
    }
    if (positional.isEmpty()) {
        return false;
    }
    options.imageArg = positional.takeFirst();
    options.paths = positional;
    return true;
}

// The item at a path of the image, written with '/' or '\' and with or without a leading one.
const COvDataItem* FindItem(const COvDataItem& root, const QString& path) {
    const COvDataItem* pItem = &root;
    const QStringList parts = QString(path).replace(u'\\', u'/').split(u'/', Qt::SkipEmptyParts);
    for (const QString& part : parts) {
        if (part == u".") {
            continue;
        }
        const auto& children = pItem->m_vecChildren;
        const auto it =
            std::find_if(children.begin(), children.end(),
                         [&part](const COvDataItem* c) { return c->m_strName == part; });
        if (it == children.end()) {
            return nullptr;
        }
        pItem = *it;
    }
    return pItem;
}

// The path of an item in the engine's form: no leading separator.
QString EngineSource(const COvDataItem& item) {
    return (item.m_strPath + item.m_strDisplayName).mid(1);
}

// The items to extract: the named ones, or everything at the top of the image.
bool SelectItems(const COvDataItem& root, const ExtractOptions& options,
                 std::vector<const COvDataItem*>& items) {
    if (options.paths.isEmpty()) {
        items.assign(root.m_vecChildren.begin(), root.m_vecChildren.end());
        return true;
    }
    for (const QString& path : options.paths) {
        const COvDataItem* pItem = FindItem(root, path);
        if (pItem == nullptr || pItem == &root) {
            PrintError(QStringLiteral("\"%1\" is not a file or folder of the image.").arg(path));
            return false;
        }
        items.push_back(pItem);
    }
    return true;
}

// Whether the target folder can take the job: a writable folder on a disk, with room.
bool CheckTarget(const QString& targetDir, const QString& targetArg, uint64_t ullTotal) {
    if (!QDir().mkpath(targetDir)) {
        PrintError(QStringLiteral("The folder \"%1\" could not be created.").arg(targetArg));
        return false;
    }
    const int driveType = MountTable().DriveTypeOf(targetDir);
    if (driveType == MountTable::kDriveUnknown || driveType == MountTable::kDriveOptical) {
        PrintError(QStringLiteral("\"%1\" is on an optical disc or an unknown drive. Choose a "
                                  "folder on a hard disk or a USB drive.")
                       .arg(targetArg));
        return false;
    }
    if (!CanCreateFileIn(targetDir)) {
        PrintError(
            QStringLiteral("You may not write to \"%1\". Choose another folder.").arg(targetArg));
        return false;
    }
    if (CImageReader::CheckDiskRoom(targetDir, ullTotal) == 0) {
        PrintError(QStringLiteral("There is not enough free space for %1 in \"%2\".")
                       .arg(CliFrontEnd::FormatBytes(ullTotal), targetArg));
        return false;
    }
    return true;
}

bool TargetExists(const QString& path) {
    const QFileInfo info(path);
    return info.exists() || info.isSymLink();
}

// With neither --overwrite nor --skip-existing, an existing target stops the job before
// anything is written.
bool CheckConflicts(const std::vector<const COvDataItem*>& items, const QString& targetBase,
                    Existing existing) {
    if (existing != Existing::Refuse) {
        return true;
    }
    for (const COvDataItem* pItem : items) {
        const QString target = targetBase + pItem->m_strDisplayName;
        if (TargetExists(target)) {
            PrintError(QStringLiteral("\"%1\" already exists. Nothing was extracted; use "
                                      "--overwrite to replace what is there or --skip-existing "
                                      "to keep it.")
                           .arg(target));
            return false;
        }
    }
    return true;
}

struct JobState {
    CliFrontEnd* pFrontEnd = nullptr;
    QString currentSource;
    bool bReported = false;
};

void OnNotice(uint32_t code, const char16_t* pPayload, void* pContext) {
    auto* pState = static_cast<JobState*>(pContext);
    const QString payload = pPayload != nullptr ? QString::fromUtf16(pPayload) : QString();
    QString message;
    switch (code) {
    case NOTIFY_COPY_BEGIN:
        pState->currentSource = payload;
        return;
    case NOTIFY_NO_ROOM:
        message = QStringLiteral("\"%1\" is too large for the file system of its target folder.")
                      .arg(payload);
        break;
    case NOTIFY_ACCESS_DENIED:
        message = QStringLiteral("You may not write \"%1\".").arg(payload);
        break;
    case NOTIFY_WRITE_FAILED:
        message = QStringLiteral("Writing \"%1\" failed: the disk may be full, or the name "
                                 "cannot be created there.")
                      .arg(payload);
        break;
    case NOTIFY_READ_FAILED:
        message = QStringLiteral("Reading \"%1\" from the image failed; the image may be damaged.")
                      .arg(pState->currentSource.replace(u'\\', u'/'));
        break;
    default:
        return;
    }
    pState->pFrontEnd->EndProgress();
    PrintError(message);
    pState->bReported = true;
}

qmz::Result ExtractItem(CImageReader& reader, const COvDataItem& item, const QString& targetBase,
                        bool bSkip) {
    if (!CImageReader::IsWritableName(item.m_strDisplayName)) {
        PrintError(QStringLiteral("\"%1\" cannot be written: its name is not usable on this disk.")
                       .arg(item.m_strDisplayName.ToString()));
        return qmz::kFail;
    }
    if (bSkip) {
        reader.SetDoneBytes(reader.GetDoneBytes() + item.m_ullSize);
        return qmz::kOk;
    }
    if (item.IsFolder()) {
        return reader.CopyFolder(EngineSource(item), targetBase);
    }
    if (item.IsFile()) {
        return reader.CopyFile(EngineSource(item), targetBase + item.m_strDisplayName,
                               &item.m_ftTime);
    }
    return qmz::kOk;
}

// Which items are skipped, decided before anything is written. The folders to be written are
// then made all at once, as their copies would make them one by one: made together, a file
// system such as ext4 places them side by side, and creating the many files inside them is then
// much faster than when each folder lands wherever the files before it left room.
std::vector<bool> PrepareTargets(const std::vector<const COvDataItem*>& items,
                                 const QString& targetBase, Existing existing) {
    std::vector<bool> skip;
    for (const COvDataItem* pItem : items) {
        skip.push_back(existing == Existing::Skip &&
                       TargetExists(targetBase + pItem->m_strDisplayName));
    }
    for (size_t i = 0; i < items.size(); ++i) {
        if (!skip[i] && items[i]->IsFolder() &&
            CImageReader::IsWritableName(items[i]->m_strDisplayName)) {
            QDir().mkdir(targetBase + items[i]->m_strDisplayName);
        }
    }
    return skip;
}

qmz::Result RunJob(CImageReader& reader, const std::vector<const COvDataItem*>& items,
                   uint64_t ullTotal, const QString& targetBase, Existing existing,
                   JobState& state) {
    reader.SetCallback(OnNotice, &state);
    reader.SetTotalBytes(ullTotal);
    reader.SetStop(0);
    const std::vector<bool> skip = PrepareTargets(items, targetBase, existing);
    qmz::Result hr = qmz::kOk;
    for (size_t i = 0; i < items.size() && hr >= 0; ++i) {
        hr = ExtractItem(reader, *items[i], targetBase, skip[i]);
    }
    reader.SetDoneBytes(0);
    reader.SetTotalBytes(0);
    reader.SetCopyPercent(0);
    reader.SetCallback(nullptr, nullptr);
    return hr;
}

bool WriteToStdout(const uint8_t* pData, uint32_t nLength, void*) {
    return std::fwrite(pData, 1, nLength, stdout) == nLength;
}

} // namespace

int RunExtract(const QStringList& args) {
    ExtractOptions options;
    if (!ParseExtractArgs(args, options)) {
        return kExitUsage;
    }
    // The target is made absolute before the reader makes the program's folder current.
    const QString targetDir = QDir::cleanPath(QFileInfo(options.targetArg).absoluteFilePath());
    const QString targetBase = targetDir.endsWith(u'/') ? targetDir : targetDir + u'/';
    ImageSession image(options.imageArg);
    if (const int exitCode = image.Open(); exitCode >= 0) {
        return exitCode;
    }
    CImageReader& reader = image.reader;
    std::vector<const COvDataItem*> items;
    if (!SelectItems(image.root, options, items)) {
        return kExitFailure;
    }
    uint64_t ullTotal = 0;
    for (const COvDataItem* pItem : items) {
        ullTotal += pItem->m_ullSize;
    }
    if (!CheckTarget(targetDir, options.targetArg, ullTotal) ||
        !CheckConflicts(items, targetBase, options.existing)) {
        return kExitFailure;
    }
    CliFrontEnd frontEnd(reader);
    JobState state;
    state.pFrontEnd = &frontEnd;
    const qmz::Result hr = RunJob(reader, items, ullTotal, targetBase, options.existing, state);
    frontEnd.EndProgress();
    if (hr == qmz::kStopped) {
        PrintError(QStringLiteral("Stopped. The file that was being written has been removed."));
        return kExitInterrupted;
    }
    if (hr < 0) {
        if (!state.bReported) {
            PrintError(
                QStringLiteral("Extracting \"%1\" failed. %2")
                    .arg(state.currentSource.replace(u'\\', u'/'), CliFrontEnd::DescribeCode(hr)));
        }
        return kExitFailure;
    }
    return kExitOk;
}

int RunCat(const QStringList& args) {
    if (args.size() != 2) {
        return kExitUsage;
    }
    ImageSession image(args[0]);
    if (const int exitCode = image.Open(); exitCode >= 0) {
        return exitCode;
    }
    CImageReader& reader = image.reader;
    const COvDataItem* pItem = FindItem(image.root, args[1]);
    if (pItem == nullptr || !pItem->IsFile()) {
        PrintError(QStringLiteral("\"%1\" is not a file of the image.").arg(args[1]));
        return kExitFailure;
    }
    CliFrontEnd frontEnd(reader);
    const qmz::Result hr = reader.StreamFile(EngineSource(*pItem), WriteToStdout, nullptr);
    if (hr == qmz::kStopped) {
        return kExitInterrupted;
    }
    if (hr < 0 || std::fflush(stdout) != 0) {
        PrintError(hr == qmz::kFail ? QStringLiteral("Writing to standard output failed.")
                                    : QStringLiteral("Reading \"%1\" from the image failed. %2")
                                          .arg(args[1], CliFrontEnd::DescribeCode(hr)));
        return kExitFailure;
    }
    return kExitOk;
}

} // namespace cli
