// The file list's control: a report of four columns, or the icons and list modes, all over one
// model and one selection. It holds no rows: the model asks the folder for each drawn cell.
#pragma once

#include "COvListModel.h"

#include <QWidget>
#include <vector>

class QAbstractItemView;
class QListView;
class QStackedLayout;
class QTreeView;

class COvListCtrl : public QWidget {
    Q_OBJECT
public:
    // The list's modes, numbered as the view commands store them.
    enum ViewMode { ModeLargeIcons = 0, ModeReport = 1, ModeSmallIcons = 2, ModeList = 3 };

    explicit COvListCtrl(QWidget* pParent = nullptr);

    COvListModel& Model() { return m_model; }
    void SetViewMode(int nMode);
    int ViewModeValue() const { return m_nMode; }
    // The view of the current mode, which takes the keys and the clicks.
    QAbstractItemView* ActiveView() const;
    QTreeView* ReportView() const { return m_pReport; }
    QListView* IconView() const { return m_pIcons; }

    // The arrow of one column: 1 up, -1 down, 0 none; one column at most has one.
    void SetSortArrow(int nColumn, int nState);
    // The whole text of the cell under the point of the report's viewport when its column
    // cuts it, else empty.
    QString CutCellTextAt(QPoint pt) const;
    int SelectedRowCount() const;
    // The selected rows in the list's order.
    std::vector<int> SelectedRows() const;
    void SelectAll();

signals:
    void columnClicked(int nColumn);
    void rowDoubleClicked(int nRow);

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    void MakeReport();
    void MakeIcons();

    COvListModel m_model;
    QStackedLayout* m_pStack = nullptr;
    QTreeView* m_pReport = nullptr;
    QListView* m_pIcons = nullptr;
    int m_nMode = ModeReport;
};
