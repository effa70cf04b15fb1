// The commands of ovrin-cli. Each takes the arguments after its own name and returns the
// process's exit code.
#pragma once

#include <QStringList>

class CImageReader;
class COvDataItem;

namespace cli {

inline constexpr int kExitOk = 0;
inline constexpr int kExitFailure = 1;
inline constexpr int kExitUsage = 2;
inline constexpr int kExitInterrupted = 130;

struct Command {
    const char* name;
    const char* usage; // the line shown in the usage text
    int (*run)(const QStringList& args);
};

// "list" and "info": the tree of an image and its summary.
int RunList(const QStringList& args);
int RunInfo(const QStringList& args);

// "extract" and "cat": files and folders of an image onto the disk, or one file to standard
// output.
int RunExtract(const QStringList& args);
int RunCat(const QStringList& args);

// Opens the image at imagePath (absolute) into root; an exit code when that failed, else -1.
// imageArg is the path as the user gave it, for messages.
int OpenInto(CImageReader& reader, const QString& imageArg, const QString& imagePath,
             COvDataItem& root);

// "layout": the burn data tree that a folder on disk makes, with its sectors.
int RunLayout(const QStringList& args);
// "reg": one setting, read or changed by hand.
int RunReg(const QStringList& args);

void PrintError(const QString& text);

} // namespace cli
