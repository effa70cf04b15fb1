// The commands of ovrin-cli. Each takes the arguments after its own name and returns the
// process's exit code.
#pragma once

#include "CImageReader.h"
#include "COvDataItem.h"

#include <QStringList>

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

// An image named on the command line, opened into its tree. The path is made absolute before
// the reader exists, because the reader makes the program's folder current.
struct ImageSession {
    explicit ImageSession(const QString& imageArg);
    // An exit code when the image could not be opened (the reason is printed), else -1.
    int Open();

    QString imageArg; // as the user gave it, for messages
    QString imagePath;
    CImageReader reader;
    COvDataItem root;
};

// "layout": the burn data tree that a folder on disk makes, with its sectors.
int RunLayout(const QStringList& args);
// "reg": one setting, read or changed by hand.
int RunReg(const QStringList& args);

void PrintError(const QString& text);

} // namespace cli
