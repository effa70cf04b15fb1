// The numbers of every text the program shows, and how many values each takes. The program
// names texts only through these constants, so that the table below is the whole list that
// every language file must cover (a test holds each language file to it).
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace tvn {

enum TextId : uint32_t {
    kBoxTitle = 100,
    kAppTitle = 102,
    kMarloweMissing = 138, // %1 program name
    kTargetNotWritableDrive = 650,
    kExtracting = 651, // %1 file name
    kTorvaneMissing = 652,
    kTorvaneBusy = 653,
    kNoImageRoot = 654,
    kOpening = 655, // %1 image path
    kOpenFailed = 656,
    kAlreadyRunning = 657,
    kBusyOnSuspend = 658,
    kBusyOnLogout = 659,
    kNoRoomToView = 660,    // %1 mount point
    kNoRoomForFile = 662,   // %1 file name, %2 mount point
    kNoRoomToExtract = 663, // %1 mount point
    kWriteFailed = 664,     // %1 target path
    kReadFailed = 665,
    kReadFailedView = 666,
    kAccessDenied = 667,     // %1 target path
    kAccessDeniedView = 668, // %1 target path
    kImageGone = 669,        // %1 image path
    kStopping = 5109,
    kImageRefused = 7055, // %1 image path
    kInstanceGuardFailed = 7076,
    kFolderNotWritable = 7427,   // %1 folder
    kNoRoomForSelection = 11330, // %1 mount point

    kColumnName = 5013,
    kColumnSize = 5014,
    kColumnType = 5015,
    kColumnModified = 5016,
    kProgressTitle = 5023,
    kFileExists = 6035,   // %1 name
    kFolderExists = 6036, // %1 name
    kReplaceFile = 6037,
    kMergeFolder = 6038,
    kEntryDetails = 6039, // %1 size text, %2 date and time text
    kNewEntryLine = 1087,
    kOpenFilter = 6119, // %1 image patterns
    kConfirmTitle = 6673,
    kExtractBrowseTitle = 11481,
    kOpenDialogTitle = 61440,

    kUnitBytes = 6051,
    kUnitKilobytes = 6052,
    kUnitMegabytes = 6053,
    kUnitGigabytes = 6054,

    kButtonStop = 2,
    kButtonReplaceAll = 3,
    kButtonSkipAll = 5,
    kButtonSkip = 730,
    kButtonReplace = 732,
    kButtonIgnore = 902,
    kButtonAbort = 903,
    kButtonRetry = 910,
    kButtonCancel = 6084,
    kButtonOk = 8016,
    kButtonNo = 11320,
    kButtonYes = 11323,

    kTipOpen = 639,
    kTipView = 640,
    kTipExtract = 641,
    kTipViewMenu = 642,
    kTipBurn = 661,
    kTipMount = 671,
    kTipUpdate = 8018,
    kTipClose = 11268,
    kTipMinimize = 61186,
    kTipMaximize = 61187,
    kTipRestore = 61817,
    kSysMenuSize = 61184,
    kSysMenuMove = 61185,

    kMenuSmallIcons = 643,
    kMenuList = 644,
    kMenuDetails = 645,
    kMenuLargeIcons = 646,

    kImageView = 627,
    kImageExtract = 628,
    kImageOpen = 629,
    kImageViewMenu = 630,
    kImageBurn = 632,
    kImageViewLarge = 633,
    kImageExtractLarge = 634,
    kImageOpenLarge = 635,
    kImageViewMenuLarge = 636,
    kImageBurnLarge = 638,
    kImageMount = 61826,
    // The mount button's own picture at 1.5, so that it does not show the burn button's.
    kImageMountLarge = 61827,

    kFontFace = 8012,
    kButtonFontSize = 8040,
};

struct TextUse {
    TextId id;
    uint32_t nArgs; // the values its callers put in: %1 to %nArgs
};

// Every text above, with its number of values.
std::span<const TextUse> AllTextUses();

} // namespace tvn
