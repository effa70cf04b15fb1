// ovrin-cli reg: look at or change one setting by hand, in either root, without the program.
#include "CRegistry.h"
#include "CliCommands.h"
#include "RegValueIo.h"

#include <QByteArray>
#include <QStringList>

#include <cstdio>
#include <cstring>

namespace cli {
namespace {

struct TypeName {
    const char* name;
    uint32_t type;
};
constexpr TypeName kTypeNames[] = {{"sz", kRegSz}, {"binary", kRegBinary}, {"dword", kRegDword}};

QString NameOfType(uint32_t type) {
    for (const TypeName& entry : kTypeNames) {
        if (entry.type == type) {
            return QString::fromLatin1(entry.name);
        }
    }
    return QString::number(type);
}

bool TypeOfName(const QString& name, uint32_t& type) {
    for (const TypeName& entry : kTypeNames) {
        if (name.compare(QLatin1String(entry.name), Qt::CaseInsensitive) == 0) {
            type = entry.type;
            return true;
        }
    }
    return false;
}

QString ValueText(uint32_t type, const QByteArray& data) {
    if (type == kRegSz) {
        return regio::TextFromBytes(data);
    }
    if (type == kRegDword && data.size() == sizeof(uint32_t)) {
        uint32_t value = 0;
        std::memcpy(&value, data.constData(), sizeof value);
        return QString::number(value);
    }
    return QString::fromLatin1(data.toHex());
}

bool DataOfText(uint32_t type, const QString& text, QByteArray& data) {
    if (type == kRegSz) {
        data = regio::BytesFromText(text);
        return true;
    }
    if (type == kRegDword) {
        bool bOk = false;
        const uint32_t value = text.toUInt(&bOk, 0);
        data = QByteArray(reinterpret_cast<const char*>(&value), sizeof value);
        return bOk;
    }
    data = QByteArray::fromHex(text.toLatin1());
    return data.toHex() == text.toLatin1().toLower();
}

bool RootOfName(const QString& name, RegRoot& root) {
    if (name.compare(u"HKCU", Qt::CaseInsensitive) == 0) {
        root = RegRoot::CurrentUser;
        return true;
    }
    if (name.compare(u"HKLM", Qt::CaseInsensitive) == 0) {
        root = RegRoot::LocalMachine;
        return true;
    }
    return false;
}

void PrintLine(const QString& text) {
    std::printf("%s\n", text.toUtf8().constData());
}

int Get(CRegistryStore& store, const QString& key, const QString& name) {
    uint32_t type = 0;
    QByteArray data;
    if (store.QueryValue(key, name, type, data) != RegStatus::Ok) {
        PrintError(QStringLiteral("There is no value \"%1\" in \"%2\".").arg(name, key));
        return kExitFailure;
    }
    PrintLine(NameOfType(type) + u'\t' + ValueText(type, data));
    return kExitOk;
}

int Set(CRegistryStore& store, const QString& key, const QString& name, const QString& typeName,
        const QString& text) {
    uint32_t type = 0;
    QByteArray data;
    if (!TypeOfName(typeName, type) || !DataOfText(type, text, data)) {
        return kExitUsage;
    }
    if (store.SetValue(key, name, type, data) != RegStatus::Ok) {
        PrintError(QStringLiteral("Could not write to %1.").arg(store.FilePath()));
        return kExitFailure;
    }
    return kExitOk;
}

int Delete(CRegistryStore& store, const QString& key, const QStringList& rest) {
    const RegStatus status =
        rest.isEmpty() ? store.DeleteKey(key) : store.DeleteValue(key, rest.first());
    if (status != RegStatus::Ok) {
        PrintError(status == RegStatus::NotFound
                       ? QStringLiteral("Nothing to delete.")
                       : QStringLiteral("Could not write to %1.").arg(store.FilePath()));
        return kExitFailure;
    }
    return kExitOk;
}

// Subkeys first, each with a trailing separator, then the values.
int List(CRegistryStore& store, const QString& key) {
    if (store.KeyExists(key) != RegStatus::Ok) {
        PrintError(QStringLiteral("There is no key \"%1\".").arg(key));
        return kExitFailure;
    }
    QString name;
    for (uint32_t i = 0; store.EnumSubKey(key, i, name) == RegStatus::Ok; ++i) {
        PrintLine(name + u'\\');
    }
    uint32_t type = 0;
    QByteArray data;
    for (uint32_t i = 0; store.EnumValue(key, i, name, type, data) == RegStatus::Ok; ++i) {
        PrintLine(name + u'\t' + NameOfType(type) + u'\t' + ValueText(type, data));
    }
    return kExitOk;
}

} // namespace

int RunReg(const QStringList& args) {
    RegRoot root = RegRoot::CurrentUser;
    if (args.size() < 3 || !RootOfName(args[1], root)) {
        return kExitUsage;
    }
    CRegistryStore& store = CRegistry::Default().Root(root);
    const QString& verb = args[0];
    const QString& key = args[2];
    if (verb == u"get" && args.size() == 4) {
        return Get(store, key, args[3]);
    }
    if (verb == u"set" && args.size() == 6) {
        return Set(store, key, args[3], args[4], args[5]);
    }
    if (verb == u"delete" && args.size() <= 4) {
        return Delete(store, key, args.mid(3));
    }
    if (verb == u"list" && args.size() == 3) {
        return List(store, key);
    }
    return kExitUsage;
}

} // namespace cli
