#include "applicationsetup.h"

#include <QFileInfo>
#include <QGuiApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

void followDisplayScale()
{
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling, true);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps, true); // the icons' larger versions
#if QT_VERSION >= QT_VERSION_CHECK(5, 14, 0)
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
#endif
}

void translateToolkit(const QString &langFile)
{
    const QLocale language = QFileInfo::exists(langFile) ? QLocale::system() : QLocale(QLocale::Japanese);
    auto *translator = new QTranslator(QCoreApplication::instance());
    if (!translator->load(language, QStringLiteral("qtbase"), QStringLiteral("_"),
                          QLibraryInfo::location(QLibraryInfo::TranslationsPath)))
        return;
    // A language that is written from the right mirrors every window; the texts of ours may be in another one.
    const Qt::LayoutDirection direction = QGuiApplication::layoutDirection();
    QCoreApplication::installTranslator(translator);
    QGuiApplication::setLayoutDirection(direction);
}
