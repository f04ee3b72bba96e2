// The rows and columns behind both views of the list: plain vectors, one entry a row, never an
// item per widget. While the owner holds it, rows appended at the end wait unpublished, so that
// a bulk add costs the views one insertion instead of one each.
#pragma once

#include <QAbstractTableModel>
#include <QIcon>
#include <QString>

#include <vector>

namespace qb::controls {

// Header formats and column alignments as the list's interface numbers them.
inline constexpr int kAlignLeft = 0;
inline constexpr int kAlignRight = 1;
inline constexpr int kAlignCenter = 2;
inline constexpr int kAlignMask = 3;
inline constexpr int kHeaderImage = 0x0800;
inline constexpr int kHeaderBitmapOnRight = 0x1000;
inline constexpr int kHeaderString = 0x4000;

class ListViewModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    // Extra roles: the row's image number and its stored value.
    static constexpr int ImageIndexRole = Qt::UserRole + 1;
    static constexpr int ParamRole = Qt::UserRole + 2;

    explicit ListViewModel(QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

    // The small image list that rows name by number (not owned).
    void setImageList(const std::vector<QIcon> *icons) { m_icons = icons; }

    // Every row, published or not.
    int totalRows() const { return int(m_rows.size()); }
    // Holding: rows appended at the end wait until release (or anything else that needs them).
    void hold(bool on);
    void publish();

    // Inserts a row with its cells at position (clamped to the end); -1 for a negative one.
    int insertRow(int position, std::vector<QString> cells, int image, qintptr param);
    QString cellText(int row, int column) const;
    qintptr rowParam(int row) const;
    // The file a row stands for and the host's own text for it; neither is shown.
    QString rowFile(int row) const;
    QString rowTag(int row) const;
    bool setRowFile(int row, const QString &file);
    bool setRowTag(int row, const QString &tag);
    bool removeRowAt(int row);
    void clearRows();

    int columnTotal() const { return int(m_columns.size()); }
    // Columns: a header text, an alignment, and the header's image number and format.
    int insertColumnAt(int position, const QString &text, int align);
    int columnImage(int column) const;
    int columnFormat(int column) const;
    bool setColumnHeader(int column, int format, int image, bool setImage);

private:
    struct Row
    {
        std::vector<QString> cells;
        int image = 0;
        qintptr param = 0;
        QString file;
        QString tag;
    };
    struct Column
    {
        QString text;
        int format = kHeaderString;
        int image = 0;
    };

    std::vector<Row> m_rows;
    std::vector<Column> m_columns;
    const std::vector<QIcon> *m_icons = nullptr;
    int m_published = 0;
    bool m_holding = false;
};

} // namespace qb::controls
