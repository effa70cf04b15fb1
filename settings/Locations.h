// Where things lie: the folder for temporary copies, the last folders the user chose, and the
// install places of the two sibling programs. Each has a fixed fallback and reports only by
// its result.
#pragma once

#include <QString>
#include <cstddef>

class CRegistry;

// The shortest buffer a caller may offer for the temp folder, as the family's paths assume.
inline constexpr size_t kMaxPathChars = 260;

// "<cache>/Brindleway/Torvane10/<Version>/Temp/", made if missing; "/tmp/" when that would
// not fit nBufferChars. False, with folder unchanged, if nBufferChars is under kMaxPathChars
// or the folder cannot be made.
bool GetTempFolder(size_t nBufferChars, QString& folder, CRegistry* pRegistry = nullptr);
// The running program's own folder, where it finds Qmz.so, Image/ and Language/ as it does
// when installed.
QString ProgramFolder();
// Makes the folder and its missing parents; true if the last one was made.
bool MakeFolderPath(const QString& path);

// The last folder used, or Documents, which the first use then stores.
QString GetImageFolder(CRegistry* pRegistry = nullptr);
void SetImageFolder(const QString& folder, CRegistry* pRegistry = nullptr);
QString GetExtractFolder(CRegistry* pRegistry = nullptr);
void SetExtractFolder(const QString& folder, CRegistry* pRegistry = nullptr);

// InstallPath of the first machine-wide subkey of key that has one; empty if none.
QString FindInstallPath(const QString& key, CRegistry* pRegistry = nullptr);
// The two siblings share one install folder. pPath, if given, gets the path even when the
// program is not there; the result says whether it is an executable file.
bool GetBurningProgramPath(QString* pPath, CRegistry* pRegistry = nullptr);
bool GetMountingProgramPath(QString* pPath, CRegistry* pRegistry = nullptr);
