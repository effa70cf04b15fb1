#include "IOvDocument.h"

#include <algorithm>

void IOvDocument::AddView(IOvView* pView) {
    if (pView != nullptr &&
        std::find(m_vecViews.begin(), m_vecViews.end(), pView) == m_vecViews.end()) {
        m_vecViews.push_back(pView);
    }
}

void IOvDocument::RemoveView(IOvView* pView) {
    std::erase(m_vecViews, pView);
}

void IOvDocument::UpdateAllViews(IOvView* pSender, int nHint) {
    // A view's update may send a hint of its own (the tree selects its new root); a copy keeps
    // this walk valid whatever the nested calls do to the list.
    const std::vector<IOvView*> views = m_vecViews;
    for (IOvView* pView : views) {
        if (pView != pSender) {
            pView->OnUpdate(pSender, nHint);
        }
    }
}
