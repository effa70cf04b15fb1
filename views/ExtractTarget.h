// The checks that every command writing out of the image makes on its target folder before a
// byte is written, the folder browser they share, and the message box they all report with.
#pragma once

#include <QString>
#include <cstdint>
#include <functional>

class QWidget;

// Asks the user for a folder: the first folder and the title; an empty answer is a cancel.
// Tests put their own answer here instead of a dialog.
using FolderChooser =
    std::function<QString(QWidget* pParent, const QString& startFolder, const QString& title)>;

// Qt's own folder dialog, so that its path box can be held to the family's path length; it
// opens in startFolder when that exists.
QString ChooseFolderWithDialog(QWidget* pParent, const QString& startFolder, const QString& title);

// Whether a file can be made in the folder that path names (path itself when it ends in '/').
bool IsFolderWritable(const QString& path);
// Whether size bytes fit on the volume of path, one percent held back; a size of 0 always fits.
bool HasRoomFor(const QString& path, uint64_t ullSize);
// The mount point of the volume that holds path: what a message names where Windows names a
// drive letter.
QString VolumeOf(const QString& path);
// The table of mounts that the drive test reads; tests give one of their own, empty restores
// the system's.
void SetExtractMountTable(const QString& tablePath);

// Steps shared by both views' extraction: the browser opening in the last extract folder, then
// refusal of discs and unknown drives and of folders that cannot be written, each told in a
// box. Without a chooser the folder dialog asks. The chosen folder with a trailing '/', or
// empty when the command ends here.
QString AskExtractTarget(QWidget* pParent, const FolderChooser& fnChoose);

// The commands' warning box, with a finished text; nIconFlags may ask for another icon.
void ShowCommandMessage(QWidget* pParent, const QString& text, uint32_t nIconFlags = 0);
