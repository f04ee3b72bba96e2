// Quoting for directive files, shared by the cabinet maker and the workbench that writes them.
#include "util/directive_token.h"

namespace qb::util {

QString QuoteDirectiveToken(const QString &text)
{
    QString token;
    token.reserve(text.size() + 2);
    token += u'"';
    for (const QChar c : text) {
        if (c == u'"')
            token += QStringLiteral("\"\"");
        else if (c == u'%')
            token += QStringLiteral("%%");
        else if (c == u'\r')
            token += QStringLiteral("%#13%");
        else if (c == u'\n')
            token += QStringLiteral("%#10%");
        else
            token += c;
    }
    token += u'"';
    return token;
}

} // namespace qb::util
