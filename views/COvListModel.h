// The file list's rows: the children of one folder, asked for cell by cell when a view draws
// them. Nothing is stored or formatted ahead: a folder of a hundred thousand files costs
// only the cells on screen.
#pragma once

#include "QmzTypes.h"

#include <QAbstractTableModel>
#include <QSize>

class COvDataItem;

class COvListModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { ColumnName = 0, ColumnSize, ColumnType, ColumnDate, ColumnCount };

    explicit COvListModel(QObject* pParent = nullptr) : QAbstractTableModel(pParent) {}

    // Shows nRows children of the folder; the count is kept until the next call.
    void SetFolder(COvDataItem* pFolder, int nRows);
    COvDataItem* Folder() const { return m_pFolder; }
    // The node of a row, or null outside the folder.
    COvDataItem* NodeAt(int nRow) const;
    // One size for every name cell, or none to let the view measure the first.
    void SetCellSize(QSize size) { m_cellSize = size; }
    // Every cell is drawn again from the nodes, after the folder's children were reordered.
    void RowsReordered();

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int nRole) const override;
    QVariant headerData(int nSection, Qt::Orientation orientation, int nRole) const override;

    // The texts of the cells, as they are drawn.
    static QString CellText(const COvDataItem& node, int nColumn);
    // A node's time as the date column shows it, in the user's time zone and format.
    static QString DateText(const qmz::FileTime& ft);
    // How many cell texts were made; what the virtual list saves.
    int FormattedCellCount() const { return m_nFormattedCells; }

private:
    COvDataItem* m_pFolder = nullptr;
    int m_nRows = 0;
    QSize m_cellSize;
    mutable int m_nFormattedCells = 0;
};
