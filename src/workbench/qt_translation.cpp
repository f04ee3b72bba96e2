// The toolkit's Chinese translation, from the folder the toolkit was installed with.
#include "workbench/qt_translation.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

namespace qb::workbench {

QTranslator *InstallToolkitTranslation(QCoreApplication &app)
{
    auto *translator = new QTranslator(&app);
    // "qt_zh_CN" bundles the base module's texts with the others of the toolkit.
    const QString folder = QLibraryInfo::path(QLibraryInfo::TranslationsPath);
    if (!translator->load(
            QLocale(QLocale::Chinese, QLocale::China), QStringLiteral("qt"), QStringLiteral("_"), folder)) {
        delete translator;
        return nullptr;
    }
    QCoreApplication::installTranslator(translator);
    return translator;
}

} // namespace qb::workbench
