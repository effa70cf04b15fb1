// The two roots of the settings, each a store of its own. The program uses one pair for its
// whole life; tests make their own pairs over temporary files.
#pragma once

#include "CRegistryStore.h"
#include "RegTypes.h"

#include <QString>

class CRegistry {
public:
    CRegistry(const QString& userFile, const QString& machineFile);
    CRegistry(const CRegistry&) = delete;
    CRegistry& operator=(const CRegistry&) = delete;

    CRegistryStore& Root(RegRoot root) {
        return root == RegRoot::LocalMachine ? m_machine : m_user;
    }

    // The pair of files of this user and this machine, or the files that
    // BRINDLEWAY_USER_REGISTRY and BRINDLEWAY_MACHINE_REGISTRY name.
    static CRegistry& Default();
    static QString DefaultUserFile();
    static QString DefaultMachineFile();

private:
    CRegistryStore m_user;
    CRegistryStore m_machine;
};
