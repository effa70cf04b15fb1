#include "CEngineResultCodes.h"

namespace {

constexpr uint32_t kFamilyMask = 0x20FF;
constexpr unsigned kFamilyShift = 16;

// Each engine program of the family carries this table; its texts, spelling included, are the
// family's and stay as they are.
constexpr tagEngineCodeRow kRows[] = {
    {0x60FF0001, u"The operation is still running."},
    {0xA0FF0001, u"(1) The selected drive is not ready.\n"
                 u"(2) There is no disc in the selected drive."},
    {0xA0FF0002, u"(1) The selected drive unit does not exist.\n"
                 u"(2) The selected drive is not supported by this program."},
    {0xA0FF0003, u"(1) The writing operation is aborted.\n"
                 u"(2) The Audio CD ripping operation is aborted.\n"
                 u"(3) The Full Erase operation is aborted."},
    {0xA0FF0004, u"(1) The inserted disc is neither blank nor recordable.\n"
                 u"(2) The inserted disc is not erasable.\n"
                 u"(3) The inserted disc is not a fit disc.\n"
                 u"    For example : To burn DVD, but inserted disc is a CD-R or CD-RW,\n"
                 u"    and vice versa."},
    {0xA0FF0005, u"(1) The Recording Image File (*.RDF or *.RIF file) is not found.\n"
                 u"(2) The input file name for Bootable image is illegal."},
    {0xA0FF0006, u"The available disk space is not enough to store the desired data."},
    {0xA0FF0007, u"The inserted disc is not blank but is erasable."},
    {0xA0FF0008, u"The execution of writing thread has been time out."},
    {0xA0FF0009, u"(1) The program needs a blank disc to perform the writing operation.\n"
                 u"(2) The source data size is greater than the free space of this inserted disc."},
    {0xE0FF0001, u"(1) The Handle of writing is not correct.\n"
                 u"(2) Get Module Handle failed.\n"
                 u"(3) Close Handle failed."},
    {0xE0FF0002, u"The Table Of Content is not correct."},
    {0xE0FF0003, u"Mount or Un-mount disc failed."},
    {0xE0FF0004,
     u"(1) The image file is not a valid image (i.e. its format is not correct).\n"
     u"(2) The using SDK is not the same as the created SDK which made this image file.\n"
     u"(3) The production type of this image file doesn't match the inserted disc type."},
    {0xE0FF0005, u"Creating event object failed."},
    {0xE0FF0006, u"Reading data from the file or from the system Pipe failed."},
    {0xE0FF0007, u"Writing data to the file or to the System Pipe failed."},
    {0xE0FF0008, u"Opening an existent file or creating a file failed."},
    {0xE0FF0009, u"Error occurred when getting the file's size."},
    {0xE0FF000A, u"The ASPI layer is not loaded or in error."},
    {0xE0FF000B, u"Some specific functions are called un-correctly or executed unsuccessfully."},
    {0xE0FF000C, u"Error occurred in the internal of Burning SDK."},
    {0xE0FF000D, u"(1) The implemented SDK is not initialized yet.\n"
                 u"(2) The initialization of SDK failed."},
    {0xE0FF000E, u"Buffer Under-run Occurred."},
    {0xE0FF000F, u"Reading the informations of the drive or the inserted disc failed."},
    {0xE0FF0010, u"(1) Writing data to the inserted disc failed.\n"
                 u"(2) The inserted disc is damaged.\n"
                 u"(3) Invalid address on disc for writing operation.\n"
                 u"(4) Creating the image file failed."},
    {0xE0FF0011, u"The returned result is undocumented and unexpected from the Burning SDK."},
    {0xE0FF0012, u"The AIN control of drive is not activated."},
    {0xE0FF0013, u"(1) The created image file (*.RDF or *.RIF) is empty.\n"
                 u"(2) The source disc is empty.\n"
                 u"(3) The settled data tree is composed of only root node, and the selected "
                 u"burning option is not to create a bootable disc."},
    {0xE0FF0014,
     u"(1) The given DVD Folder does not contain the necessary file VIDEO_TS.IFO or VTS_01_0.IFO.\n"
     u"(2) The given DVD Folder is not complied with the DVD Specifi"
     u"cation. Some fields in the *.IFO file are not correct."},
    {0xE0FF0016, u"(1) The parameters for calling function or selecting option are not correct.\n"
                 u"(2) The index for array accessing or drives selection is out of range."},
    {0xE0FF0017, u"(1) A communication error occurred during the program and the drive unit.\n"
                 u"(2) Drive has no response to the commands sent by initiator."},
    {0xE0FF0018, u"(1) The inserted disc is damaged or its format is corrupted.\n"
                 u"(2) The size of source data is larger than the disc's free space.\n"
                 u"(3) The drive unit communication error."},
    {0xE0FF0019, u"Creating Worker Thread failed."},
    {0xE0FF001A, u"Error occurred during the creation of device manager."},
    {0xE0FF001B, u"Error occurred when creating the instance of reader or writer."},
    {0xE0FF001C, u"The execution of Worker Thread failed."},
    {0xE0FF001D, u"The file system for reading or writing disc is incorrect or not supported yet."},
    {0xE0FF001E, u"The execution of callback function failed."},
    {0xE0FF001F, u"Error occurred during the computation of Segment Play Item Number (VCD/SVCD)."},
    {0xE0FF0020, u"System memory is exhausted."},
    {0xE0FF0021, u"Disc erasing operation failed."},
    {0xE0FF0022, u"The assigned path of the run-time Halcyra included pack is not correct."},
    {0xE0FF0023, u"(1) Getting the version information of the implemented Burning SDK failed.\n"
                 u"(2) The needed DLL files for Burning SDK cannot be found."},
    {0xE0FF0024, u"Null COM Smart Pointer is used."},
    {0xE0FF0025, u"Setting the track information failed."},
    {0xE0FF0026, u"Error occurred when copying string, file, or folder."},
    {0xE0FF0027, u"Error occurred when getting the already existent event handle."},
    {0xE0FF0028, u"Changing the extension part of some file's name failed."},
    {0xE0FF0029, u"The used sector mode is not correct or not supported."},
    {0xE0FF002A, u"The used writing mode is not correct or not supported."},
    {0xE0FF002B, u"Changing medium failed."},
    {0xE0FF002C, u"Initialization of recordable disc failed."},
    {0xE0FF002D, u"The track information is not correct."},
    {0xE0FF002E, u"Waiting functions of Windows SDK failed."},
    {0xE0FF002F, u"The used string is a null string."},
    {0xE0FF0031, u"Loading DLL files failed."},
    {0xE0FF0032, u"Releasing the already loaded DLL files failed."},
    {0xE0FF0033, u"Getting the procedure's addresses failed."},
    {0xE0FF0034, u"(1) Get or set the current directory failed.\n"
                 u"(2) Create directory failed."},
    {0xE0FF0035,
     u"(1) There is non-DVD-Video file in \"...\\VIDEO_TS\\\" of the selected DVD folder.\n"
     u"(2) The number of source file is zero or it's not correct during the production process.\n"
     u"(3) When creating VCD/SVCD discs, the number of files (ITEMxxxx.*) in the Segment Play Item "
     u"Area exceeds the limit number 1980.\n"
     u"(4) The data tree construction for DVD video files, under the directory VIDEO_TS, is not "
     u"correct."},
    {0xE0FF0036, u"The disc is not an Audio CD or the current track is not an Audio track."},
    {0xE0FF0037, u"Error occurred when creating or opening the system mapping file."},
    {0xE0FF0038, u"Creating the Anonymous Pipe failed."},
    {0xE0FF0039,
     u"Error occurred when creating, connecting, or disconnecting a Custom Track Callback object."},
    {0xE0FF003A, u"Writing Lead-in data on disc failed."},
    {0xE0FF003B, u"Writing Lead-out data on disc failed."},
    {0xE0FF003C, u"Writing Pregap or Postgap failed."},
    {0xE0FF003D, u"(1) Error occurred when inserting, deleting, or copying a node of a tree.\n"
                 u"(2) Some data tree nodes' properties setting are not correct.\n"
                 u"(3) Swap null node."},
    {0xE0FF003E,
     u"(1) The total size of source data is larger than the free space of the inserted disc or "
     u"HDD.\n"
     u"(2) When creating VCD/SVCD discs, the total size of files (ITEMxxxx.*) in the Segment Play "
     u"Item Area exceeds the limit size 297000 Sectors.\n"
     u"(3) The size of input buffer is not enough to contain the retrieved data to output."},
    {0xE0FF003F, u"Importing the previous data session of the inserted disc failed."},
    {0xE0FF0040, u"There is no reader or writer drive connected to this computer."},
    {0xE0FF0041, u"This function is not implemented yet."},
    {0xE0FF0042, u"Getting system Windows directory failed."},
    {0xE0FF0043, u"Getting the version of Windows' O.S. failed."},
    {0xE0FF0044,
     u"Execution of the system shell command failed (e.g. Running RegEdit.exe failed)."},
    {0xE0FF0045, u"Error occurred when opening or creating or querying the registry key value."},
    {0xE0FF0046,
     u"The selected bootable floppy disk is not correct to create a bootable image file."},
    {0xE0FF0047, u"The data asapi for the registry value UpperFilters is not found. Burning engine "
                 u"has added this data correctly."},
    {0xE0FF0048, u"File is not found in the currently searching directory."},
    {0xE0FF0049, u"Find file failed in the currently searching directory."},
    {0xE0FF004A, u"When burning VCD/SVCD, the assigned files are not correct."},
    {0xE0FF004C, u"Error occurred when deleting string, file, or folder."},
    {0xE0FF004D, u"String length of the output LPTSTR parameter, used to keep the returned data, "
                 u"is too short."},
    {0xE0FF004F, u"Creating or Releasing Win32 Kernel Objects (e.g. Event, Thread, Mutex, "
                 u"Semaphore,...) failed."},
    {0xE0FF0050, u"Error occurred when trying to get the related drive information."},
    {0xE0FF0051, u"Error occurred when trying to get the drive handle."},
    {0xE0FF0052, u"(1) The implemented SDK is not deinitialized yet.\n"
                 u"(2) The deinitialization of SDK failed."},
    {0xE0FF0053, u"(1) Error occurred when getting files or directories related information in "
                 u"thefile system.\n"
                 u"(2) Error occurred when getting file system related information."},
    {0xE0FF0054, u"(1) Error occurred when setting files or directories related information in "
                 u"thefile system.\n"
                 u"(2) Error occurred when setting file system related information."},
    {0xE0FF0055, u"Error occurred when writing or updating file system.."},
    {0xE0FF0056, u"Error occurred when trying to get the related disc information."},
    {0xE0FF0057, u"Error occurred in Hardware control manager module."},
    {0xE0FF0058, u"Error occurred when formatting disc."},
    {0xE0FF0059, u"Error occurred when setting some parameters to Hardware control manager."},
    {0xE0FF005A, u"Error occurred in Kesmet module."},
    {0xE0FF005D, u"The current user doesn't have the access right of registry key."},
    {0xE0FF005E,
     u"Please check the length of file path or file name or extension name is correct."},
    {0xE0FF005F, u"Please check if the disc is a multi-session disc."},
    {0xE0FF0062, u"(1) An Audio File you tried to burn has a non-supported format.\n"
                 u"(2) An Audio File you tried to burn has a non-existant format."},
    {0xE0FF0063, u"There was a problem with an Audio File's stream.\n"
                 u"(1)The file could not be opened.\n"
                 u"(2)The file had more than 1 stream.\n"
                 u"(3)The file is corrupted for other reasons."},
    {0xE0FF0060, u"A required COM module could not be initialized."},
    {0xE0FF0061, u"(1) Tried to write an audio track without starting Audio Burning.\n"
                 u"(2) Tried to end Audio Burning before starting Audio Burning.\n"
                 u"(3) Tried to start Audio Burning before last Audio Burning finished.\n"},
    {0xE0FF0076,
     u"There was a problem about the exclusive-lock on the selected drive.\n"
     u"(1) The selected drive may be in use by another application. Please access another drive.\n"
     u"(2) The selected drive may be unlocked.\n"},
};

const tagEngineCodeRow* FindRow(uint32_t code) {
    for (const tagEngineCodeRow& row : kRows) {
        if (row.uCode == code) {
            return &row;
        }
    }
    return nullptr;
}

uint32_t TextLength(const char16_t* pText) {
    uint32_t n = 0;
    while (pText[n] != u'\0') {
        ++n;
    }
    return n;
}

} // namespace

bool CEngineResultCodes::IsEngineCode(uint32_t code) {
    return ((code >> kFamilyShift) & kFamilyMask) == kFamilyMask;
}

bool CEngineResultCodes::GetEngineCodeText(uint32_t code, uint32_t nCapacity, char16_t* pBuffer,
                                           uint32_t* pCount) {
    if (!IsEngineCode(code)) {
        return false;
    }
    pBuffer[0] = u'\0';
    if (pCount != nullptr) {
        *pCount = 0;
    }
    const tagEngineCodeRow* pRow = FindRow(code);
    if (pRow == nullptr) {
        return false;
    }
    const uint32_t nLength = TextLength(pRow->wszText);
    const uint32_t nCopied = nLength < nCapacity ? nLength : nCapacity;
    for (uint32_t i = 0; i < nCapacity; ++i) {
        pBuffer[i] = i < nCopied ? pRow->wszText[i] : u'\0';
    }
    if (pCount != nullptr) {
        *pCount = nCopied;
    }
    return true;
}

std::span<const tagEngineCodeRow> CEngineResultCodes::Rows() {
    return kRows;
}
