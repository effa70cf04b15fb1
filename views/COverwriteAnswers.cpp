#include "COverwriteAnswers.h"

qmz::Result COverwriteAnswers::AskOverwrite(QWidget* pParent, const NotifyData& data) {
    if (m_bYesToAll) {
        return kWrite;
    }
    if (m_bNoToAll) {
        return kSkip;
    }
    CConfirmFile dialog(pParent);
    dialog.SetData(&data);
    switch (dialog.exec()) {
    case CConfirmFile::kIdSkip:
        return kSkip;
    case CConfirmFile::kIdReplaceAll:
        m_bYesToAll = true;
        return kWrite;
    case CConfirmFile::kIdSkipAll:
        m_bNoToAll = true;
        return kSkip;
    case CConfirmFile::kIdStop:
        m_bCancelled = true;
        return kStop;
    default:
        // A dialog closed without an answer of its own writes, as the replace button does.
        return kWrite;
    }
}

void COverwriteAnswers::Clear() {
    m_bYesToAll = false;
    m_bNoToAll = false;
    m_bCancelled = false;
}
