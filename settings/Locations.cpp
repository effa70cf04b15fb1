#include "Locations.h"

#include "CRegistry.h"
#include "RegValueIo.h"
#include "StringReg.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace {

using namespace Qt::StringLiterals;

// The family reads the version into 520 bytes, terminator included.
constexpr size_t kVersionBufferBytes = 520;
constexpr size_t kTerminatorBytes = 2;

const QString kFamilyFolder = u"/Brindleway/Torvane10/"_s;
const QString kTempLeaf = u"/Temp"_s;
const QString kFallbackTemp = u"/tmp"_s;

QString InstalledVersion(CRegistry& registry) {
    QByteArray data;
    if (!regio::ReadBytes(registry, RegRoot::LocalMachine, QString::fromUtf16(kSettingsKey),
                          u"Version"_s, kVersionBufferBytes - kTerminatorBytes, data)) {
        return QString();
    }
    return regio::TextFromBytes(data);
}

// The per-user application data folder, made if missing; empty if it cannot be had.
QString AppDataFolder() {
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
    return !folder.isEmpty() && QDir().mkpath(folder) ? folder : QString();
}

QString DocumentsFolder() {
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    return !folder.isEmpty() && QDir().mkpath(folder) ? folder : QDir::homePath();
}

QString GetFolderSetting(const QString& name, CRegistry* pRegistry) {
    StringReg value(RegRoot::CurrentUser, QString::fromUtf16(kSettingsKey), name, true, pRegistry);
    if (value.Read()) {
        return value.Text();
    }
    // The first use fixes the default, so that later changes of Documents do not move it.
    const QString folder = DocumentsFolder();
    value = folder;
    return folder;
}

void SetFolderSetting(const QString& name, const QString& folder, CRegistry* pRegistry) {
    StringReg value(RegRoot::CurrentUser, QString::fromUtf16(kSettingsKey), name, true, pRegistry);
    value = folder;
}

bool GetSiblingPath(const QString& program, QString* pPath, CRegistry* pRegistry) {
    const QString installPath = FindInstallPath(QString::fromUtf16(kInstallKey), pRegistry);
    if (installPath.isEmpty()) {
        return false;
    }
    const QString path = installPath + u'/' + program;
    if (pPath != nullptr) {
        *pPath = path;
    }
    const QFileInfo info(path);
    return info.isFile() && info.isExecutable();
}

} // namespace

QString ProgramFolder() {
    return QFileInfo(QFile::symLinkTarget(u"/proc/self/exe"_s)).absolutePath();
}

bool GetTempFolder(size_t nBufferChars, QString& folder, CRegistry* pRegistry) {
    if (nBufferChars < kMaxPathChars) {
        return false;
    }
    QString path = AppDataFolder();
    if (!path.isEmpty()) {
        // An empty version leaves two separators before "Temp", as the siblings have it.
        const QString version = InstalledVersion(regio::Resolve(pRegistry));
        const size_t nNeeded = static_cast<size_t>(path.size() + kFamilyFolder.size() +
                                                   version.size() + kTempLeaf.size()) +
                               1;
        path = nNeeded <= nBufferChars ? path + kFamilyFolder + version + kTempLeaf : QString();
    }
    if (path.isEmpty()) {
        path = kFallbackTemp;
    }
    if (!QFileInfo(path).isDir() && !MakeFolderPath(path)) {
        return false;
    }
    folder = path + u'/';
    return true;
}

bool MakeFolderPath(const QString& path) {
    QString folder = path;
    if (folder.endsWith(u'/')) {
        folder.chop(1);
    }
    const QString parent = folder.left(folder.lastIndexOf(u'/'));
    if (!parent.isEmpty() && !QFileInfo::exists(parent)) {
        MakeFolderPath(parent);
    }
    return QDir().mkdir(folder);
}

QString GetImageFolder(CRegistry* pRegistry) {
    return GetFolderSetting(u"ImagePath"_s, pRegistry);
}

void SetImageFolder(const QString& folder, CRegistry* pRegistry) {
    SetFolderSetting(u"ImagePath"_s, folder, pRegistry);
}

QString GetExtractFolder(CRegistry* pRegistry) {
    return GetFolderSetting(u"ExtractPath"_s, pRegistry);
}

void SetExtractFolder(const QString& folder, CRegistry* pRegistry) {
    SetFolderSetting(u"ExtractPath"_s, folder, pRegistry);
}

QString FindInstallPath(const QString& key, CRegistry* pRegistry) {
    CRegistryStore& machine = regio::Resolve(pRegistry).Root(RegRoot::LocalMachine);
    QString subKey;
    for (uint32_t i = 0; machine.EnumSubKey(key, i, subKey) == RegStatus::Ok; ++i) {
        StringReg installPath(RegRoot::LocalMachine, key + u'\\' + subKey, u"InstallPath"_s, false,
                              pRegistry);
        if (installPath.Read()) {
            return installPath.Text();
        }
    }
    return QString();
}

bool GetBurningProgramPath(QString* pPath, CRegistry* pRegistry) {
    return GetSiblingPath(u"torvane10"_s, pPath, pRegistry);
}

bool GetMountingProgramPath(QString* pPath, CRegistry* pRegistry) {
    return GetSiblingPath(u"marlowe10"_s, pPath, pRegistry);
}
