// The family's two other programs, the burning program and the virtual-drive program: whether
// one already runs, by the named locks they hold, and starting one with the image.
#pragma once

#include <QString>
#include <QStringList>

class QWidget;

// The named locks that the running sibling programs hold.
inline constexpr char16_t kBurningProgramLock[] = u"Global\\{4F0D5A18-1D1B-4e60-BDF9-0F62C79FB3FA}";
inline constexpr char16_t kMountingProgramLock[] =
    u"Global\\{262F6735-5040-48A3-9F11-ECC6327CC961}";
// The instance socket of the virtual-drive program's window.
inline constexpr char16_t kMountingProgramWindow[] = u"Brindleway Marlowe Unit";
// The arguments after the image's path that tell each program that another one hands it over.
inline constexpr char16_t kBurningInterOpArgument[] = u"/InterOp";
inline constexpr char16_t kMountingInterOpArgument[] = u"/INTEROPMODE";

// False while the burning program runs, or when that cannot be found out. A snapshot: the
// lock taken for the test is given back before the answer. With bBroadcast a running program
// is told that another one wants it.
bool IsBurningProgramFree(bool bBroadcast);
// When the virtual-drive program runs with its window, brings it forward, hides the frame
// until that program ends and answers true; false when a new copy must be started.
bool HandOverToRunningDrive(QWidget* pFrame);
// Sends a short notice to whoever holds the named socket of that name and listens; false if
// nobody takes it.
bool SendNotice(const QString& name);

// The frame while a sibling has the image: out of sight and taking no input.
void HideFrame(QWidget* pFrame);
void RestoreFrame(QWidget* pFrame);
