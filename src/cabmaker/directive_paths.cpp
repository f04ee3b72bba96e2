// Path and message helpers shared by the parts of the directive interpreter.
#include "cabmaker/directive_paths.h"

#include <QStringList>

namespace qb::cabmaker {

QString TidyPath(const QString &path)
{
    QStringList kept;
    for (const QString &part : path.split(u'/', Qt::SkipEmptyParts)) {
        if (part != u".")
            kept.append(part);
    }
    return u'/' + kept.join(u'/');
}

QString AbsolutePathFrom(const QString &base, const QString &path)
{
    return TidyPath(path.startsWith(u'/') ? path : base + u'/' + path);
}

QString PrintableText(QString text)
{
    for (QChar &c : text) {
        if (c.unicode() < 0x20 || c.unicode() == 0x7f)
            c = u'?';
    }
    return text;
}

} // namespace qb::cabmaker
