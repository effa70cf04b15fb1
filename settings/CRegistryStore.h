// One root of the settings: a hierarchical store of keys and typed values in one SQLite
// file. Key paths and value names compare without case; a value keeps its type number and
// its exact bytes; every write is one transaction, so that a crash or a second writer never
// leaves half a write behind.
#pragma once

#include "RegTypes.h"

#include <QByteArray>
#include <QString>
#include <cstdint>

struct sqlite3;

class CRegistryStore {
public:
    // Nothing is opened or created until the first use; a store that is never written to
    // leaves no file behind.
    explicit CRegistryStore(const QString& filePath);
    ~CRegistryStore();
    CRegistryStore(const CRegistryStore&) = delete;
    CRegistryStore& operator=(const CRegistryStore&) = delete;

    const QString& FilePath() const { return m_strFilePath; }

    RegStatus KeyExists(const QString& key);
    // Makes the key and every missing parent.
    RegStatus CreateKey(const QString& key);
    // Makes the key if needed and sets the value, in one transaction.
    RegStatus SetValue(const QString& key, const QString& name, uint32_t type,
                       const QByteArray& data);
    RegStatus QueryValue(const QString& key, const QString& name, uint32_t& type, QByteArray& data);
    RegStatus DeleteValue(const QString& key, const QString& name);
    // Values in the order they were first written; NoMoreItems past the last.
    RegStatus EnumValue(const QString& key, uint32_t index, QString& name, uint32_t& type,
                        QByteArray& data);
    // Subkeys in the order of their names, without case; NoMoreItems past the last.
    RegStatus EnumSubKey(const QString& key, uint32_t index, QString& name);
    // Removes the key with all its values and subkeys. The root itself cannot be removed.
    RegStatus DeleteKey(const QString& key);

    // True if the file is absent or sound.
    bool CheckIntegrity();

private:
    enum class Access { Read, Write };
    bool Open(Access access);
    bool Execute(const char* sql);
    bool InsertKeyChain(const QString& foldedKey, const QString& key);

    QString m_strFilePath;
    sqlite3* m_pDb = nullptr;
    bool m_bWritable = false;
};
