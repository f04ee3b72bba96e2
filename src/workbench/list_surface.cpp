// The plain row store.
#include "workbench/list_surface.h"

namespace qb::workbench {

void RowStore::AddItem(const QString &ItemsText, const QString &FileName, const QString &Tag)
{
    m_rows.push_back(Row {ItemsText.split(u'|'), FileName, Tag, false});
}

void RowStore::Clear()
{
    m_rows.clear();
    m_focused = -1;
}

void RowStore::ItemRemove(int Index)
{
    if (Index < 0 || Index >= Count())
        return;
    m_rows.erase(m_rows.begin() + Index);
    if (m_focused >= Count())
        m_focused = Count() - 1;
}

bool RowStore::ItemSelected(int Index) const
{
    return Index >= 0 && Index < Count() && m_rows[size_t(Index)].selected;
}

void RowStore::setItemSelected(int Index, bool selected)
{
    if (Index >= 0 && Index < Count())
        m_rows[size_t(Index)].selected = selected;
}

QString RowStore::ItemText(int Index, int Column) const
{
    if (Index < 0 || Index >= Count())
        return {};
    const QStringList &columns = m_rows[size_t(Index)].columns;
    return Column >= 0 && Column < columns.size() ? columns[Column].trimmed() : QString();
}

QString RowStore::ItemFile(int Index) const
{
    return Index >= 0 && Index < Count() ? m_rows[size_t(Index)].file : QString();
}

QString RowStore::ItemTag(int Index) const
{
    return Index >= 0 && Index < Count() ? m_rows[size_t(Index)].tag : QString();
}

} // namespace qb::workbench
