// What the workbench asks of its list: the package being built, or the contents of an open
// cabinet. The window's list control and a plain row store both offer it.
#pragma once

#include <QString>
#include <QStringList>

#include <vector>

namespace qb::workbench {

class ListSurface
{
public:
    virtual ~ListSurface() = default;

    // False while an add runs: the guard against a second one.
    virtual bool Enabled() const = 0;
    virtual void setEnabled(bool on) = 0;
    // Painting off during long adds.
    virtual void SetRedraw(bool on) = 0;
    // A row given as its columns joined by "|", and the file it stands for. Tag is the
    // workbench's own exact text for the row (the name in the cabinet), never shown.
    virtual void AddItem(const QString &ItemsText, const QString &FileName, const QString &Tag) = 0;
    virtual void Clear() = 0;
    virtual int Count() const = 0;
    // The focused row, -1 when there is none.
    virtual int ItemIndex() const = 0;
    virtual void ItemRemove(int Index) = 0;
    virtual bool ItemSelected(int Index) const = 0;
    // A column of a row, trimmed; "" outside the rows. For display: a name may hold "|" or
    // blanks that the columns cannot keep.
    virtual QString ItemText(int Index, int Column) const = 0;
    // Exactly what AddItem was given for the row; "" outside the rows.
    virtual QString ItemFile(int Index) const = 0;
    virtual QString ItemTag(int Index) const = 0;
};

// The list as plain rows, for work without a window.
class RowStore : public ListSurface
{
public:
    bool Enabled() const override { return m_enabled; }
    void setEnabled(bool on) override { m_enabled = on; }
    void SetRedraw(bool on) override { m_redraw = on; }
    void AddItem(const QString &ItemsText, const QString &FileName, const QString &Tag) override;
    void Clear() override;
    int Count() const override { return int(m_rows.size()); }
    int ItemIndex() const override { return m_focused; }
    void ItemRemove(int Index) override;
    bool ItemSelected(int Index) const override;
    QString ItemText(int Index, int Column) const override;
    QString ItemFile(int Index) const override;
    QString ItemTag(int Index) const override;

    // The store's own controls, which a window's list has as user gestures.
    void setItemIndex(int Index) { m_focused = Index; }
    void setItemSelected(int Index, bool selected);
    bool redrawing() const { return m_redraw; }

private:
    struct Row
    {
        QStringList columns;
        QString file;
        QString tag;
        bool selected = false;
    };
    std::vector<Row> m_rows;
    bool m_enabled = true;
    bool m_redraw = true;
    int m_focused = -1;
};

} // namespace qb::workbench
