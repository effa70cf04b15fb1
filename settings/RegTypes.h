// Names shared by the settings store and the value objects over it.
#pragma once

#include <cstdint>

// The two roots that the program keeps settings under; a per-user read falls back to the
// machine-wide value of the same path and name.
enum class RegRoot : uint32_t { CurrentUser, LocalMachine };

// Type numbers as the family's other programs store them, so that a value written by one
// program reads the same in another.
inline constexpr uint32_t kRegSz = 1;
inline constexpr uint32_t kRegBinary = 3;
inline constexpr uint32_t kRegDword = 4;

enum class RegStatus : uint32_t {
    Ok = 0,
    NotFound, // the key or the value does not exist
    NoMoreItems,
    Failed, // the store could not be opened, read or written
};

// The key under which the viewer and its siblings keep their settings.
inline constexpr char16_t kSettingsKey[] = u"Software\\Brindleway\\Torvane10\\10.0";
// Where the siblings record their install folders, one subkey per installation.
inline constexpr char16_t kInstallKey[] = u"Software\\Brindleway\\Torvane10";
