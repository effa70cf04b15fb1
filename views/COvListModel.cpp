#include "COvListModel.h"

#include "COvDataItem.h"
#include "CShellIcons.h"
#include "FileTimeMath.h"
#include "Formatting.h"
#include "TvnText.h"

#include <QDateTime>

namespace {

constexpr uint64_t kTicksPerMillisecond = filetime::kTicksPerSecond / 1000;
constexpr int64_t kMillisecondsFrom1601To1970 = filetime::kSecondsFrom1601To1970 * 1000;

QString SizeText(const COvDataItem& node) {
    const QString size = FormatSizeInKB(node.m_ullSize);
    // A folder shows what lies below it, marked off from a file's own size.
    return node.IsFolder() ? u'<' + size + u'>' : size;
}

} // namespace

void COvListModel::SetFolder(COvDataItem* pFolder, int nRows) {
    beginResetModel();
    m_pFolder = pFolder;
    m_nRows = nRows;
    endResetModel();
}

COvDataItem* COvListModel::NodeAt(int nRow) const {
    if (m_pFolder == nullptr || nRow < 0 || nRow >= m_nRows ||
        static_cast<size_t>(nRow) >= m_pFolder->m_vecChildren.size()) {
        return nullptr;
    }
    return m_pFolder->m_vecChildren[static_cast<size_t>(nRow)];
}

void COvListModel::RowsReordered() {
    if (m_nRows > 0) {
        emit dataChanged(index(0, 0), index(m_nRows - 1, ColumnCount - 1));
    }
}

int COvListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : m_nRows;
}

int COvListModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : ColumnCount;
}

QString COvListModel::CellText(const COvDataItem& node, int nColumn) {
    switch (nColumn) {
    case ColumnName:
        return node.m_strName;
    case ColumnSize:
        return SizeText(node);
    case ColumnType:
        return node.m_strTypeName;
    case ColumnDate:
        return DateText(node.m_ftTime);
    default:
        return QString();
    }
}

QVariant COvListModel::data(const QModelIndex& index, int nRole) const {
    const COvDataItem* pNode = NodeAt(index.row());
    if (pNode == nullptr || index.column() >= ColumnCount) {
        return QVariant();
    }
    switch (nRole) {
    case Qt::DisplayRole:
        ++m_nFormattedCells;
        return CellText(*pNode, index.column());
    case Qt::DecorationRole:
        return index.column() == ColumnName ? QVariant(CShellIcons::Instance().Icon(pNode->m_nIcon))
                                            : QVariant();
    case Qt::SizeHintRole:
        return index.column() == ColumnName && m_cellSize.isValid() ? QVariant(m_cellSize)
                                                                    : QVariant();
    case Qt::TextAlignmentRole:
        // Other cells take the view's own alignment: left in the report, centred under a
        // large icon.
        return index.column() == ColumnSize
                   ? QVariant(Qt::Alignment(Qt::AlignRight | Qt::AlignVCenter))
                   : QVariant();
    default:
        return QVariant();
    }
}

QVariant COvListModel::headerData(int nSection, Qt::Orientation orientation, int nRole) const {
    if (orientation != Qt::Horizontal || nSection < 0 || nSection >= ColumnCount) {
        return QVariant();
    }
    if (nRole == Qt::DisplayRole) {
        return TvnText(static_cast<uint32_t>(tvn::kColumnName + nSection));
    }
    if (nRole == Qt::TextAlignmentRole) {
        return nSection == ColumnSize ? QVariant(Qt::Alignment(Qt::AlignRight | Qt::AlignVCenter))
                                      : QVariant(Qt::Alignment(Qt::AlignLeft | Qt::AlignVCenter));
    }
    return QVariant();
}

QString COvListModel::DateText(const qmz::FileTime& ft) {
    const uint64_t ticks = (static_cast<uint64_t>(ft.dwHighDateTime) << 32) | ft.dwLowDateTime;
    const int64_t msSince1970 =
        static_cast<int64_t>(ticks / kTicksPerMillisecond) - kMillisecondsFrom1601To1970;
    return FormatDateTime(QDateTime::fromMSecsSinceEpoch(msSince1970, Qt::UTC));
}
