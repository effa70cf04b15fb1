#include "CRegistry.h"

#include <QDir>
#include <QStandardPaths>

CRegistry::CRegistry(const QString& userFile, const QString& machineFile)
    : m_user(userFile), m_machine(machineFile) {}

CRegistry& CRegistry::Default() {
    static CRegistry registry(DefaultUserFile(), DefaultMachineFile());
    return registry;
}

QString CRegistry::DefaultUserFile() {
    const QString overridden = qEnvironmentVariable("BRINDLEWAY_USER_REGISTRY");
    if (!overridden.isEmpty()) {
        return overridden;
    }
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/brindleway/registry.db");
}

QString CRegistry::DefaultMachineFile() {
    const QString overridden = qEnvironmentVariable("BRINDLEWAY_MACHINE_REGISTRY");
    return overridden.isEmpty() ? QStringLiteral("/etc/brindleway/registry.db") : overridden;
}
