#include "CRegistryStore.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <sqlite3.h>

namespace {

// Long enough for a second process to finish a burst of writes; short enough that a store
// held by a hung process fails a write instead of hanging the program.
constexpr int kBusyTimeoutMs = 10000;

const char kSchema[] =
    "CREATE TABLE IF NOT EXISTS keys("
    " fold TEXT PRIMARY KEY, parent TEXT NOT NULL, name TEXT NOT NULL);"
    "CREATE INDEX IF NOT EXISTS keys_parent ON keys(parent, fold);"
    "CREATE TABLE IF NOT EXISTS vals("
    " key TEXT NOT NULL, fold TEXT NOT NULL, name TEXT NOT NULL, type INTEGER NOT NULL,"
    " data BLOB NOT NULL, PRIMARY KEY(key, fold));";

// Key paths are kept without leading or trailing separators; the root is the empty path.
QString TrimKey(const QString& key) {
    qsizetype nStart = 0;
    qsizetype nEnd = key.size();
    while (nStart < nEnd && key[nStart] == u'\\') {
        ++nStart;
    }
    while (nEnd > nStart && key[nEnd - 1] == u'\\') {
        --nEnd;
    }
    return key.mid(nStart, nEnd - nStart);
}

QString Fold(const QString& text) {
    return text.toCaseFolded();
}

class Statement {
public:
    Statement(sqlite3* pDb, const char* sql) {
        m_rc = sqlite3_prepare_v2(pDb, sql, -1, &m_pStmt, nullptr);
    }
    ~Statement() { sqlite3_finalize(m_pStmt); }
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    bool IsValid() const { return m_rc == SQLITE_OK; }
    void Bind(int nIndex, const QString& text) {
        sqlite3_bind_text16(m_pStmt, nIndex, text.utf16(), static_cast<int>(text.size() * 2),
                            SQLITE_TRANSIENT);
    }
    void Bind(int nIndex, int64_t value) { sqlite3_bind_int64(m_pStmt, nIndex, value); }
    void BindBlob(int nIndex, const QByteArray& data) {
        // A null pointer would bind SQL NULL, and an empty value is not an absent one.
        if (data.isEmpty()) {
            sqlite3_bind_zeroblob(m_pStmt, nIndex, 0);
        } else {
            sqlite3_bind_blob(m_pStmt, nIndex, data.constData(), static_cast<int>(data.size()),
                              SQLITE_TRANSIENT);
        }
    }
    int Step() { return sqlite3_step(m_pStmt); }
    void Reset() { sqlite3_reset(m_pStmt); }
    QString Text(int nColumn) const {
        const void* p = sqlite3_column_text16(m_pStmt, nColumn);
        const int nBytes = sqlite3_column_bytes16(m_pStmt, nColumn);
        return QString(static_cast<const QChar*>(p), nBytes / 2);
    }
    QByteArray Blob(int nColumn) const {
        const void* p = sqlite3_column_blob(m_pStmt, nColumn);
        const int nBytes = sqlite3_column_bytes(m_pStmt, nColumn);
        return QByteArray(static_cast<const char*>(p), nBytes);
    }
    int64_t Int(int nColumn) const { return sqlite3_column_int64(m_pStmt, nColumn); }

private:
    sqlite3_stmt* m_pStmt = nullptr;
    int m_rc = SQLITE_ERROR;
};

// One write transaction; rolled back unless committed.
class WriteTransaction {
public:
    explicit WriteTransaction(sqlite3* pDb) : m_pDb(pDb) {
        // IMMEDIATE takes the write lock at once, so two writers queue on the busy timeout
        // instead of one failing on a lock upgrade.
        m_bBegun = sqlite3_exec(pDb, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr) == SQLITE_OK;
    }
    ~WriteTransaction() {
        if (m_bBegun) {
            sqlite3_exec(m_pDb, "ROLLBACK", nullptr, nullptr, nullptr);
        }
    }
    WriteTransaction(const WriteTransaction&) = delete;
    WriteTransaction& operator=(const WriteTransaction&) = delete;

    bool IsBegun() const { return m_bBegun; }
    bool Commit() {
        if (!m_bBegun || sqlite3_exec(m_pDb, "COMMIT", nullptr, nullptr, nullptr) != SQLITE_OK) {
            return false;
        }
        m_bBegun = false;
        return true;
    }

private:
    sqlite3* m_pDb;
    bool m_bBegun = false;
};

} // namespace

CRegistryStore::CRegistryStore(const QString& filePath) : m_strFilePath(filePath) {}

CRegistryStore::~CRegistryStore() {
    sqlite3_close(m_pDb);
}

bool CRegistryStore::Open(Access access) {
    if (m_pDb != nullptr && (access == Access::Read || m_bWritable)) {
        return true;
    }
    sqlite3_close(m_pDb);
    m_pDb = nullptr;
    m_bWritable = false;
    if (access == Access::Read && !QFileInfo::exists(m_strFilePath)) {
        return false;
    }
    if (access == Access::Write && !QDir().mkpath(QFileInfo(m_strFilePath).absolutePath())) {
        return false;
    }
    const QByteArray path = QFile::encodeName(m_strFilePath);
    const int nCreate = access == Access::Write ? SQLITE_OPEN_CREATE : 0;
    if (sqlite3_open_v2(path.constData(), &m_pDb, SQLITE_OPEN_READWRITE | nCreate, nullptr) ==
        SQLITE_OK) {
        m_bWritable = true;
    } else if (access == Access::Read) {
        // A machine-wide store is read-only for everyone but the installer.
        sqlite3_close(m_pDb);
        m_pDb = nullptr;
        if (sqlite3_open_v2(path.constData(), &m_pDb, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK) {
            sqlite3_close(m_pDb);
            m_pDb = nullptr;
            return false;
        }
    } else {
        sqlite3_close(m_pDb);
        m_pDb = nullptr;
        return false;
    }
    sqlite3_busy_timeout(m_pDb, kBusyTimeoutMs);
    // FULL syncs the journal and the file on every commit: a write that returned success
    // survives a crash of the process and of the machine.
    if (!Execute("PRAGMA synchronous=FULL") || (m_bWritable && !Execute(kSchema))) {
        sqlite3_close(m_pDb);
        m_pDb = nullptr;
        m_bWritable = false;
        return false;
    }
    return true;
}

bool CRegistryStore::Execute(const char* sql) {
    return sqlite3_exec(m_pDb, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
}

RegStatus CRegistryStore::KeyExists(const QString& key) {
    if (!Open(Access::Read)) {
        return RegStatus::NotFound;
    }
    const QString folded = Fold(TrimKey(key));
    if (folded.isEmpty()) {
        return RegStatus::Ok;
    }
    Statement stmt(m_pDb, "SELECT 1 FROM keys WHERE fold = ?1");
    if (!stmt.IsValid()) {
        return RegStatus::Failed;
    }
    stmt.Bind(1, folded);
    const int rc = stmt.Step();
    return rc == SQLITE_ROW ? RegStatus::Ok
                            : (rc == SQLITE_DONE ? RegStatus::NotFound : RegStatus::Failed);
}

bool CRegistryStore::InsertKeyChain(const QString& foldedKey, const QString& key) {
    Statement stmt(m_pDb, "INSERT OR IGNORE INTO keys(fold, parent, name) VALUES(?1, ?2, ?3)");
    if (!stmt.IsValid()) {
        return false;
    }
    const QStringList folds = foldedKey.split(u'\\');
    const QStringList names = key.split(u'\\');
    if (folds.size() != names.size()) {
        return false;
    }
    QString path;
    for (qsizetype i = 0; i < folds.size(); ++i) {
        const QString parent = path;
        path = path.isEmpty() ? folds[i] : path + u'\\' + folds[i];
        stmt.Bind(1, path);
        stmt.Bind(2, parent);
        stmt.Bind(3, names[i]);
        if (stmt.Step() != SQLITE_DONE) {
            return false;
        }
        stmt.Reset();
    }
    return true;
}

RegStatus CRegistryStore::CreateKey(const QString& key) {
    const QString trimmed = TrimKey(key);
    if (!Open(Access::Write)) {
        return RegStatus::Failed;
    }
    WriteTransaction transaction(m_pDb);
    if (!transaction.IsBegun()) {
        return RegStatus::Failed;
    }
    if (!trimmed.isEmpty() && !InsertKeyChain(Fold(trimmed), trimmed)) {
        return RegStatus::Failed;
    }
    return transaction.Commit() ? RegStatus::Ok : RegStatus::Failed;
}

RegStatus CRegistryStore::SetValue(const QString& key, const QString& name, uint32_t type,
                                   const QByteArray& data) {
    const QString trimmed = TrimKey(key);
    const QString folded = Fold(trimmed);
    if (!Open(Access::Write)) {
        return RegStatus::Failed;
    }
    WriteTransaction transaction(m_pDb);
    if (!transaction.IsBegun()) {
        return RegStatus::Failed;
    }
    if (!trimmed.isEmpty() && !InsertKeyChain(folded, trimmed)) {
        return RegStatus::Failed;
    }
    // An update keeps the row, and so the value's place in the enumeration and the case of
    // its first name, as the family's programs expect.
    Statement stmt(m_pDb, "INSERT INTO vals(key, fold, name, type, data) VALUES(?1, ?2, ?3, ?4, ?5)"
                          " ON CONFLICT(key, fold) DO UPDATE SET type = excluded.type,"
                          " data = excluded.data");
    if (!stmt.IsValid()) {
        return RegStatus::Failed;
    }
    stmt.Bind(1, folded);
    stmt.Bind(2, Fold(name));
    stmt.Bind(3, name);
    stmt.Bind(4, static_cast<int64_t>(type));
    stmt.BindBlob(5, data);
    if (stmt.Step() != SQLITE_DONE) {
        return RegStatus::Failed;
    }
    return transaction.Commit() ? RegStatus::Ok : RegStatus::Failed;
}

RegStatus CRegistryStore::QueryValue(const QString& key, const QString& name, uint32_t& type,
                                     QByteArray& data) {
    if (!Open(Access::Read)) {
        return RegStatus::NotFound;
    }
    Statement stmt(m_pDb, "SELECT type, data FROM vals WHERE key = ?1 AND fold = ?2");
    if (!stmt.IsValid()) {
        return RegStatus::Failed;
    }
    stmt.Bind(1, Fold(TrimKey(key)));
    stmt.Bind(2, Fold(name));
    const int rc = stmt.Step();
    if (rc != SQLITE_ROW) {
        return rc == SQLITE_DONE ? RegStatus::NotFound : RegStatus::Failed;
    }
    type = static_cast<uint32_t>(stmt.Int(0));
    data = stmt.Blob(1);
    return RegStatus::Ok;
}

RegStatus CRegistryStore::DeleteValue(const QString& key, const QString& name) {
    if (!Open(Access::Write)) {
        return RegStatus::Failed;
    }
    WriteTransaction transaction(m_pDb);
    Statement stmt(m_pDb, "DELETE FROM vals WHERE key = ?1 AND fold = ?2");
    if (!transaction.IsBegun() || !stmt.IsValid()) {
        return RegStatus::Failed;
    }
    stmt.Bind(1, Fold(TrimKey(key)));
    stmt.Bind(2, Fold(name));
    if (stmt.Step() != SQLITE_DONE) {
        return RegStatus::Failed;
    }
    if (sqlite3_changes(m_pDb) == 0) {
        return RegStatus::NotFound;
    }
    return transaction.Commit() ? RegStatus::Ok : RegStatus::Failed;
}

RegStatus CRegistryStore::DeleteKey(const QString& key) {
    const QString folded = Fold(TrimKey(key));
    if (folded.isEmpty() || !Open(Access::Write)) {
        return RegStatus::Failed;
    }
    WriteTransaction transaction(m_pDb);
    // The subtree is the key itself and every path that starts with it and a separator.
    Statement values(m_pDb, "DELETE FROM vals WHERE key = ?1 OR"
                            " substr(key, 1, length(?1) + 1) = ?1 || '\\'");
    Statement keys(m_pDb, "DELETE FROM keys WHERE fold = ?1 OR"
                          " substr(fold, 1, length(?1) + 1) = ?1 || '\\'");
    if (!transaction.IsBegun() || !values.IsValid() || !keys.IsValid()) {
        return RegStatus::Failed;
    }
    values.Bind(1, folded);
    keys.Bind(1, folded);
    if (values.Step() != SQLITE_DONE || keys.Step() != SQLITE_DONE) {
        return RegStatus::Failed;
    }
    if (sqlite3_changes(m_pDb) == 0) {
        return RegStatus::NotFound;
    }
    return transaction.Commit() ? RegStatus::Ok : RegStatus::Failed;
}

RegStatus CRegistryStore::EnumValue(const QString& key, uint32_t index, QString& name,
                                    uint32_t& type, QByteArray& data) {
    if (!Open(Access::Read)) {
        return RegStatus::NotFound;
    }
    if (KeyExists(key) != RegStatus::Ok) {
        return RegStatus::NotFound;
    }
    Statement stmt(m_pDb, "SELECT name, type, data FROM vals WHERE key = ?1"
                          " ORDER BY rowid LIMIT 1 OFFSET ?2");
    if (!stmt.IsValid()) {
        return RegStatus::Failed;
    }
    stmt.Bind(1, Fold(TrimKey(key)));
    stmt.Bind(2, static_cast<int64_t>(index));
    const int rc = stmt.Step();
    if (rc != SQLITE_ROW) {
        return rc == SQLITE_DONE ? RegStatus::NoMoreItems : RegStatus::Failed;
    }
    name = stmt.Text(0);
    type = static_cast<uint32_t>(stmt.Int(1));
    data = stmt.Blob(2);
    return RegStatus::Ok;
}

RegStatus CRegistryStore::EnumSubKey(const QString& key, uint32_t index, QString& name) {
    if (KeyExists(key) != RegStatus::Ok) {
        return RegStatus::NotFound;
    }
    Statement stmt(m_pDb,
                   "SELECT name FROM keys WHERE parent = ?1 ORDER BY fold LIMIT 1 OFFSET ?2");
    if (!stmt.IsValid()) {
        return RegStatus::Failed;
    }
    stmt.Bind(1, Fold(TrimKey(key)));
    stmt.Bind(2, static_cast<int64_t>(index));
    const int rc = stmt.Step();
    if (rc != SQLITE_ROW) {
        return rc == SQLITE_DONE ? RegStatus::NoMoreItems : RegStatus::Failed;
    }
    name = stmt.Text(0);
    return RegStatus::Ok;
}

bool CRegistryStore::CheckIntegrity() {
    if (!Open(Access::Read)) {
        return !QFileInfo::exists(m_strFilePath);
    }
    Statement stmt(m_pDb, "PRAGMA integrity_check");
    return stmt.IsValid() && stmt.Step() == SQLITE_ROW && stmt.Text(0) == u"ok";
}
