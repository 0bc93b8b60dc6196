#include "applicationsetup.h"

#include <QFileInfo>
#include <QGuiApplication>
#include <QIcon>
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

void setWindowIcons()
{
    QIcon icon;
    for (const int size : {16, 32, 48, 128})
        icon.addFile(QStringLiteral(":/icons/ovmic-%1.png").arg(size));
    QGuiApplication::setWindowIcon(icon);
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
