// The list view's file-type table and the small image list behind it.
#include "controls/list_view_file_types.h"

#include <QFileInfo>
#include <QMimeType>

namespace qb::controls {

std::vector<FileTypeRecord> BuildFileTypes(
    const QString &FormatsMask, const QString &MaskSeparator, const FileTypeLookup &lookup)
{
    std::vector<FileTypeRecord> types;
    if (FormatsMask.isEmpty() || MaskSeparator.isEmpty())
        return types;
    const QStringList pieces = FormatsMask.split(MaskSeparator, Qt::SkipEmptyParts, Qt::CaseInsensitive);
    types.reserve(size_t(pieces.size()));
    for (const QString &piece : pieces) {
        FileTypeRecord record = lookup ? lookup(piece) : FileTypeRecord {};
        record.Extension = piece;
        types.push_back(std::move(record));
    }
    return types;
}

FileTypeRecord FindFileType(const std::vector<FileTypeRecord> &types, const QString &FileName)
{
    const qsizetype dot = FileName.lastIndexOf(u'.');
    const QStringView extension = dot < 0 ? QStringView(FileName) : QStringView(FileName).mid(dot + 1);
    for (const FileTypeRecord &record : types) {
        if (extension.compare(record.Extension, Qt::CaseInsensitive) == 0)
            return record;
    }
    return {};
}

ShellFileTypes::ShellFileTypes()
{
    const QIcon file = m_provider.icon(QFileIconProvider::File);
    for (int i = 0; i < kFixedImages - 1; ++i)
        m_icons.push_back(file);
    m_icons.push_back(m_provider.icon(QFileIconProvider::Folder));
}

FileTypeRecord ShellFileTypes::lookup(const QString &extension)
{
    FileTypeRecord record;
    record.Extension = extension;
    const QString probe = QStringLiteral("file.") + extension;
    const QMimeType type = m_mime.mimeTypeForFile(probe, QMimeDatabase::MatchExtension);
    if (!type.isValid() || type.isDefault())
        return record;
    record.TypeName = type.comment();
    auto slot = m_byType.constFind(type.name());
    if (slot == m_byType.constEnd()) {
        QIcon icon = m_provider.icon(QFileInfo(probe));
        if (icon.isNull())
            icon = m_icons.front();
        m_icons.push_back(icon);
        slot = m_byType.insert(type.name(), int(m_icons.size()) - 1);
    }
    record.IconIndex = *slot;
    return record;
}

} // namespace qb::controls
