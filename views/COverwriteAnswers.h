// The answers of one extraction job to the question about existing targets: each question is
// asked with CConfirmFile unless an earlier answer was meant for all the rest.
#pragma once

#include "CConfirmFile.h"
#include "QmzTypes.h"

class QWidget;

class COverwriteAnswers {
public:
    // What AskOverwrite answers.
    static constexpr qmz::Result kWrite = 0;
    static constexpr qmz::Result kSkip = 1;
    static constexpr qmz::Result kStop = qmz::kStopped;

    // Write or skip at once when an answer for the rest was given, else asks.
    qmz::Result AskOverwrite(QWidget* pParent, const NotifyData& data);
    // The job is over: the next one asks again.
    void Clear();
    bool Cancelled() const { return m_bCancelled; }

private:
    bool m_bYesToAll = false;
    bool m_bNoToAll = false;
    bool m_bCancelled = false;
};
