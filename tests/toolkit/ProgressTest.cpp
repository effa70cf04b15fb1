#include "CAlphaButton.h"
#include "CAlphaStatic.h"
#include "CApProgressCtrl.h"
#include "CProgressDlg.h"
#include "SkinFonts.h"
#include "ToolkitTestSupport.h"

#include <QFontMetrics>
#include <functional>
#include <gtest/gtest.h>

namespace {

using namespace Qt::StringLiterals;
using namespace toolkittest;

class PaintCounter : public QObject {
public:
    explicit PaintCounter(QWidget* pWidget) { pWidget->installEventFilter(this); }
    int m_nPaints = 0;

protected:
    bool eventFilter(QObject*, QEvent* pEvent) override {
        m_nPaints += pEvent->type() == QEvent::Paint ? 1 : 0;
        return false;
    }
};

TEST(CProgressDlg, PercentRoundsHalfUpAndAnEmptyRangeGivesZero) {
    CommittedSkin skin;
    const struct {
        int nLower;
        int nUpper;
        int nPos;
        int nPercent;
    } cases[] = {
        {0, 200, 3, 2},   {0, 200, 1, 1}, {0, 3, 2, 67},   {10, 20, 15, 50},
        {0, 100, 40, 40}, {5, 5, 700, 0}, {20, 10, 15, 0},
    };
    for (const auto& c : cases) {
        CProgressDlg dialog(nullptr, u"Progress"_s, nullptr);
        dialog.SetRange(c.nLower, c.nUpper, 1);
        dialog.SetPos(c.nPos);
        EXPECT_EQ(dialog.Percent(), c.nPercent) << c.nLower << ".." << c.nUpper << " " << c.nPos;
        EXPECT_EQ(dialog.Bar()->GetPos(), c.nPercent);
    }
}

TEST(CProgressDlg, RepaintsTheBarOnlyWhenThePercentChanges) {
    CommittedSkin skin;
    CProgressDlg dialog(nullptr, u"Progress"_s, nullptr);
    dialog.SetRange(0, 10000, 1);
    dialog.show();
    QCoreApplication::processEvents();
    PaintCounter bar(dialog.Bar());
    PaintCounter whole(&dialog);
    int nChanges = 0;
    for (int i = 0; i < 10000; ++i) {
        const int nBefore = dialog.Percent();
        dialog.SetPos(i);
        nChanges += dialog.Percent() != nBefore ? 1 : 0;
    }
    QCoreApplication::processEvents();
    EXPECT_EQ(nChanges, 100);
    EXPECT_EQ(bar.m_nPaints, nChanges);
    EXPECT_EQ(whole.m_nPaints, nChanges) << "the backdrop under the bar, once a change";
}

TEST(CApProgressCtrl, GoingBackwardsRepaintsTheParentAndTellsIt) {
    CommittedSkin skin;
    RecordingParent parent;
    const PaintCounter parentPaints(&parent);
    CApProgressCtrl* pBar = nullptr;
    CControlFactory factory;
    ASSERT_EQ(
        factory.CreateProgressCtrl(QRect(0, 0, 300, 20), &parent, 0, &pBar, QString(), QString()),
        kStatusOk);
    parent.show();
    QCoreApplication::processEvents();
    pBar->SetPos(60);
    QCoreApplication::processEvents();
    EXPECT_EQ(parent.Count(kWmProgressBackwards), 0) << "forwards";
    const int nPaintsBefore = parentPaints.m_nPaints;
    pBar->SetPos(20);
    QCoreApplication::processEvents();
    EXPECT_EQ(parent.Count(kWmProgressBackwards), 1);
    EXPECT_GT(parentPaints.m_nPaints, nPaintsBefore);
    EXPECT_EQ(pBar->GetPos(), 20);
}

TEST(CApProgressCtrl, RevealsTheUnitFromTheLeftOrTheRightWithoutStretching) {
    TempInstall install;
    install.Save(Strip({0xFF000080}, 100, 10), u"Image/bg.png"_s);
    install.Save(Strip({0xFF00FF00}, 100, 10), u"Image/unit.png"_s);
    QWidget parent;
    CApProgressCtrl bar;
    bar.Create(QRect(0, 0, 100, 10), &parent, 0);
    ASSERT_TRUE(bar.LoadImages(u"Image/bg.png"_s, u"Image/unit.png"_s));
    const struct {
        bool bReverse;
        int nFilledFrom;
        int nFilledTo;
    } cases[] = {{false, 0, 29}, {true, 70, 99}};
    for (const auto& c : cases) {
        bar.SetPos(30, c.bReverse);
        const QImage shown = bar.grab().toImage();
        for (int x = 0; x < 100; ++x) {
            const bool bFilled = x >= c.nFilledFrom && x <= c.nFilledTo;
            EXPECT_EQ(shown.pixel(x, 5), bFilled ? 0xFF00FF00u : 0xFF000080u)
                << "reverse " << c.bReverse << " x " << x;
        }
    }
}

struct CancelCase {
    const char* name;
    std::function<void(CProgressDlg&)> act;
};

TEST(CProgressDlg, EveryWayToCancelSetsTheFlagAndTellsTheNotifyWindow) {
    CommittedSkin skin;
    const CancelCase cases[] = {
        {"cancel button", [](CProgressDlg& d) { Click(*d.CancelButton()); }},
        {"close button", [](CProgressDlg& d) { Click(*d.CloseButton()); }},
        {"window manager's close", [](CProgressDlg& d) { d.close(); }},
        {"escape", [](CProgressDlg& d) { Key(d, QEvent::KeyPress, Qt::Key_Escape); }},
    };
    for (const CancelCase& c : cases) {
        for (const bool bNotify : {true, false}) {
            RecordingParent notify;
            CProgressDlg dialog(nullptr, u"Progress"_s, bNotify ? &notify : nullptr);
            dialog.show();
            c.act(dialog);
            QCoreApplication::sendPostedEvents(&dialog);
            EXPECT_TRUE(dialog.IsCancelled()) << c.name;
            EXPECT_TRUE(dialog.isVisible()) << c.name << ": the owner hides it";
            const std::vector<Message>& delivered = notify.Delivered();
            ASSERT_EQ(delivered.size(), bNotify ? 1u : 0u) << c.name;
            if (bNotify) {
                EXPECT_EQ(delivered[0].nMessage, wmProgressCancel);
                EXPECT_EQ(delivered[0].wParam, 1u);
                EXPECT_EQ(delivered[0].lParam, 0);
            }
        }
    }
}

TEST(CProgressDlg, TextsAreCutToTheirRoomAndAnUnchangedTextIsNotSetAgain) {
    CommittedSkin skin;
    CProgressDlg dialog(nullptr, u"Progress"_s, nullptr);
    EXPECT_TRUE(dialog.SetText(u"Opening..."_s));
    EXPECT_FALSE(dialog.SetText(u"Opening..."_s));
    EXPECT_FALSE(dialog.SetTextNoTruncate(u"Opening..."_s));
    EXPECT_FALSE(dialog.SetText(QString()));
    EXPECT_EQ(dialog.GetText(), u"Opening..."_s);

    const QString folder = u"/home/someone/Documents/Disc images/"_s + QString(60, u'x');
    const QString path = folder + u"/track01.iso"_s;
    ASSERT_TRUE(dialog.SetTextWithPath(u"Extracting"_s, path));
    const QStringList lines = dialog.GetText().split(u'\n');
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(lines[0], u"Extracting"_s);
    EXPECT_TRUE(lines[1].startsWith(u"/home/someone/"_s)) << lines[1].toStdString();
    EXPECT_TRUE(lines[1].endsWith(QChar(0x2026))) << "cut at the end";
    const QFont font = MakeDialogFont(kBodyFontNumerator, kWeightNormal);
    EXPECT_LE(QFontMetrics(font).horizontalAdvance(lines[1]), 400);
    EXPECT_EQ(dialog.TextStatic()->Text(), dialog.GetText()) << "the two lines are kept";

    ASSERT_TRUE(dialog.SetText(u"Extracting "_s + path + path));
    EXPECT_TRUE(dialog.TextStatic()->Text().endsWith(QChar(0x2026)));
    EXPECT_EQ(dialog.GetText(), u"Extracting "_s + path + path) << "the whole text is kept";
}

TEST(CProgressDlg, MissingPicturesLeaveAWorkingWindowThatEnterDoesNotCancel) {
    TempInstall install;
    RecordingParent notify;
    CProgressDlg dialog(nullptr, u"Progress"_s, &notify);
    dialog.SetTextWithPath(u"Opening"_s, u"/tmp/a.iso"_s);
    dialog.SetPos(50);
    dialog.SetPos(10);
    dialog.show();
    EXPECT_FALSE(dialog.grab().isNull());
    EXPECT_EQ(dialog.size(), QSize(468, 164));
    // Enter on the focused cancel button must not stop the job.
    Key(*dialog.CancelButton(), QEvent::KeyPress, Qt::Key_Return);
    QCoreApplication::sendPostedEvents(&dialog);
    EXPECT_EQ(notify.Count(wmProgressCancel), 0);
    Click(*dialog.CancelButton());
    QCoreApplication::sendPostedEvents(&dialog);
    EXPECT_EQ(notify.Count(wmProgressCancel), 1);
}

} // namespace
