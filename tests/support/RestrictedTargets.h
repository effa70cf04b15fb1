// Conditions that a target folder can be put in for the tests of writing failures, also when
// the tests run as root.
#pragma once

#include <filesystem>
#include <sys/resource.h>

namespace testsupport {

// Makes permission bits count for this thread and the threads it starts from now on, as they
// do for a user without privileges: root's override of file permissions is dropped from the
// effective set, and the destructor takes it back.
class NoAccessOverride {
public:
    NoAccessOverride();
    ~NoAccessOverride();
    NoAccessOverride(const NoAccessOverride&) = delete;
    NoAccessOverride& operator=(const NoAccessOverride&) = delete;

private:
    unsigned m_savedEffective = 0;
    bool m_bChanged = false;
};

// A folder that can take only about `bytes` of file data: a small tmpfs mounted on it where
// this process may mount, otherwise a limit on the size of files this process writes (whose
// signal is ignored, so a write past it just falls short).
class SmallVolume {
public:
    SmallVolume(const std::filesystem::path& folder, unsigned long bytes);
    ~SmallVolume();
    SmallVolume(const SmallVolume&) = delete;
    SmallVolume& operator=(const SmallVolume&) = delete;

private:
    std::filesystem::path m_folder;
    bool m_bMounted = false;
    rlimit m_savedLimit{};
    void (*m_savedHandler)(int) = nullptr;
};

} // namespace testsupport
