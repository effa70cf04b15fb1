// Small routines for real folders: emptying one into the desktop trash, testing whether one
// can be written to, and keeping the interface alive during long work on its thread.
#pragma once

#include <QString>
#include <cstdint>

// Tells the user something; the program's windows install the teller, and without one the
// settings say nothing.
using NoticeHandler = void (*)(const QString& text);
void SetNoticeHandler(NoticeHandler pfnHandler);
// Shown for each entry that could be neither moved to the trash nor removed.
inline constexpr char16_t kEntryNotRemovedNotice[] = u"Cancel the operation!!";

// Moves every entry, hidden ones too, to the trash (plain removal where there is none). An
// entry that stays is reported through the notice handler, and the others are still tried.
// With bRemove the folder itself is removed as well, and the result is then that of
// FolderHasNoEntries on the removed folder, which is false: callers of the family rely on it.
bool EmptyFolder(const QString& path, bool bRemove);
// True if the folder exists and holds nothing.
bool FolderHasNoEntries(const QString& path);
// Tests the folder of path: path itself if it ends in a separator, else its parent.
bool CanWriteToFolder(const QString& path);
// True if a temporary file could be made in folder and removed again.
bool CanCreateFileIn(const QString& folder);

// Runs what is pending in the event queue; callers must bear re-entry.
void PumpMessages();
// Runs the pending events of one kind, named by the family's message number.
void PumpMessageType(uint32_t message);
inline constexpr uint32_t kMessagePaint = 15;
