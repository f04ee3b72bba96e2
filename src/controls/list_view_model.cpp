// The list's rows and columns as a table model.
#include "controls/list_view_model.h"

#include <algorithm>
#include <limits>

namespace qb::controls {

namespace {

Qt::Alignment alignmentOf(int format)
{
    switch (format & kAlignMask) {
    case kAlignRight:
        return Qt::AlignRight | Qt::AlignVCenter;
    case kAlignCenter:
        return Qt::AlignHCenter | Qt::AlignVCenter;
    default:
        return Qt::AlignLeft | Qt::AlignVCenter;
    }
}

} // namespace

ListViewModel::ListViewModel(QObject *parent)
    : QAbstractTableModel(parent)
{ }

int ListViewModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_published;
}

int ListViewModel::columnCount(const QModelIndex &parent) const
{
    // A list without columns still shows its rows' first cells (the thumbnail labels).
    return parent.isValid() ? 0 : std::max(1, int(m_columns.size()));
}

QVariant ListViewModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_published)
        return {};
    const Row &row = m_rows[size_t(index.row())];
    const int column = index.column();
    switch (role) {
    case Qt::DisplayRole:
        return size_t(column) < row.cells.size() ? row.cells[size_t(column)] : QString();
    case Qt::DecorationRole:
        if (column == 0 && m_icons && row.image >= 0 && size_t(row.image) < m_icons->size())
            return (*m_icons)[size_t(row.image)];
        return {};
    case Qt::TextAlignmentRole:
        return size_t(column) < m_columns.size() ? QVariant(alignmentOf(m_columns[size_t(column)].format))
                                                 : QVariant();
    case ImageIndexRole:
        return row.image;
    case ParamRole:
        return qlonglong(row.param);
    default:
        return {};
    }
}

QVariant ListViewModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || size_t(section) >= m_columns.size())
        return {};
    const Column &column = m_columns[size_t(section)];
    switch (role) {
    case Qt::DisplayRole:
        return column.text;
    case Qt::TextAlignmentRole:
        return QVariant(alignmentOf(column.format));
    default:
        // The header's image list is never filled, so no column shows an icon.
        return {};
    }
}

Qt::ItemFlags ListViewModel::flags(const QModelIndex &index) const
{
    return index.isValid() ? Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren
                           : Qt::NoItemFlags;
}

void ListViewModel::hold(bool on)
{
    if (!on)
        publish();
    m_holding = on;
}

void ListViewModel::publish()
{
    const int total = totalRows();
    if (m_published >= total)
        return;
    beginInsertRows({}, m_published, total - 1);
    m_published = total;
    endInsertRows();
}

int ListViewModel::insertRow(int position, std::vector<QString> cells, int image, qintptr param)
{
    const int total = totalRows();
    if (position < 0 || total == std::numeric_limits<int>::max())
        return -1;
    position = std::min(position, total);
    Row row {std::move(cells), image, param, {}, {}};
    if (m_holding && position == total) {
        m_rows.push_back(std::move(row));
        return position;
    }
    publish();
    beginInsertRows({}, position, position);
    m_rows.insert(m_rows.begin() + position, std::move(row));
    ++m_published;
    endInsertRows();
    return position;
}

QString ListViewModel::cellText(int row, int column) const
{
    if (row < 0 || row >= totalRows() || column < 0)
        return {};
    const std::vector<QString> &cells = m_rows[size_t(row)].cells;
    return size_t(column) < cells.size() ? cells[size_t(column)] : QString();
}

qintptr ListViewModel::rowParam(int row) const
{
    return row < 0 || row >= totalRows() ? 0 : m_rows[size_t(row)].param;
}

QString ListViewModel::rowFile(int row) const
{
    return row < 0 || row >= totalRows() ? QString() : m_rows[size_t(row)].file;
}

QString ListViewModel::rowTag(int row) const
{
    return row < 0 || row >= totalRows() ? QString() : m_rows[size_t(row)].tag;
}

bool ListViewModel::setRowFile(int row, const QString &file)
{
    if (row < 0 || row >= totalRows())
        return false;
    m_rows[size_t(row)].file = file;
    return true;
}

bool ListViewModel::setRowTag(int row, const QString &tag)
{
    if (row < 0 || row >= totalRows())
        return false;
    m_rows[size_t(row)].tag = tag;
    return true;
}

bool ListViewModel::removeRowAt(int row)
{
    if (row < 0 || row >= totalRows())
        return false;
    publish();
    beginRemoveRows({}, row, row);
    m_rows.erase(m_rows.begin() + row);
    --m_published;
    endRemoveRows();
    return true;
}

void ListViewModel::clearRows()
{
    // Removal rather than a reset: a reset would make the header forget its column widths.
    if (m_published > 0) {
        beginRemoveRows({}, 0, m_published - 1);
        m_rows.clear();
        m_published = 0;
        endRemoveRows();
    }
    m_rows.clear();
    m_rows.shrink_to_fit();
}

int ListViewModel::insertColumnAt(int position, const QString &text, int align)
{
    if (position < 0)
        return -1;
    position = std::min(position, int(m_columns.size()));
    const Column column {text, (align & kAlignMask) | kHeaderString, 0};
    if (m_columns.empty()) {
        // The stand-in column becomes a real one: the views keep their rows and selection.
        m_columns.push_back(column);
        Q_EMIT headerDataChanged(Qt::Horizontal, 0, 0);
        if (m_published > 0)
            Q_EMIT dataChanged(index(0, 0), index(m_published - 1, 0), {Qt::TextAlignmentRole});
        return 0;
    }
    beginInsertColumns({}, position, position);
    m_columns.insert(m_columns.begin() + position, column);
    // Cells belong to column positions: those at and after the new column move along.
    for (Row &row : m_rows) {
        if (size_t(position) < row.cells.size())
            row.cells.insert(row.cells.begin() + position, QString());
    }
    endInsertColumns();
    return position;
}

int ListViewModel::columnImage(int column) const
{
    return column < 0 || size_t(column) >= m_columns.size() ? 0 : m_columns[size_t(column)].image;
}

int ListViewModel::columnFormat(int column) const
{
    return column < 0 || size_t(column) >= m_columns.size() ? 0 : m_columns[size_t(column)].format;
}

bool ListViewModel::setColumnHeader(int column, int format, int image, bool setImage)
{
    if (column < 0 || size_t(column) >= m_columns.size())
        return false;
    m_columns[size_t(column)].format = format;
    if (setImage)
        m_columns[size_t(column)].image = image;
    Q_EMIT headerDataChanged(Qt::Horizontal, column, column);
    return true;
}

} // namespace qb::controls
