#include "TvnText.h"

#include "CTvnStringTable.h"

#include <QDebug>

namespace {

const CTvnStringTable* g_pTable = nullptr;

void WarnMissing(uint32_t id) {
    qWarning("Ovrin: no text for number %u", id);
}

MissingTextHandler g_pfnMissing = WarnMissing;

} // namespace

void SetCurrentStringTable(const CTvnStringTable* pTable) {
    g_pTable = pTable;
}

void SetMissingTextHandler(MissingTextHandler pfnHandler) {
    g_pfnMissing = pfnHandler != nullptr ? pfnHandler : WarnMissing;
}

bool HasTvnText(uint32_t id) {
    return g_pTable != nullptr && g_pTable->Contains(id);
}

QString TvnText(uint32_t id) {
    if (g_pTable != nullptr && g_pTable->Contains(id)) {
        return g_pTable->Text(id);
    }
    g_pfnMissing(id);
    return QStringLiteral("[text %1]").arg(id);
}
